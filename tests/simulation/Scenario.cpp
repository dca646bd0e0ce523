#include "simulation/Scenario.h"

#include <rapidcheck.h>

#include <sstream>

namespace simulation {
namespace {

constexpr int SIZE = 100; // of what rapidcheck makes: the ranges below are used whole
constexpr size_t MOST_CLIENTS = 4;

rc::Gen<Job> jobs()
{
    return rc::gen::build<Job>(
        rc::gen::set(&Job::lun, rc::gen::inRange(1U, 5U)),
        rc::gen::set(&Job::isWhole, rc::gen::weightedElement<bool>({{2, true}, {1, false}})),
        rc::gen::set(&Job::useSeconds, rc::gen::inRange(0U, 3U)));
}

rc::Gen<Event> events()
{
    const auto points = rc::gen::map(rc::gen::inRange(0, static_cast<int>(Point::COUNT)),
                                     [](int point) { return static_cast<Point>(point); });
    const auto troubles = rc::gen::weightedElement<Trouble>({{30, Trouble::SWITCH},
                                                             {3, Trouble::KILL},
                                                             {1, Trouble::KILL_FOR_GOOD},
                                                             {2, Trouble::NO_ANSWER},
                                                             {2, Trouble::NOT_SENT},
                                                             {3, Trouble::BUSY},
                                                             {2, Trouble::SESSION_DOWN},
                                                             {2, Trouble::UDEV_STALLS},
                                                             {1, Trouble::SCRIPT},
                                                             {2, Trouble::TAKEN_AWAY},
                                                             {1, Trouble::EVENT_LOST},
                                                             {3, Trouble::NO_DESCRIPTORS},
                                                             {2, Trouble::NO_PROCESSES},
                                                             {2, Trouble::MAPS_ANEW}});
    return rc::gen::build<Event>(
        rc::gen::set(&Event::client, rc::gen::inRange(0U, unsigned(MOST_CLIENTS))),
        rc::gen::set(&Event::point, points), rc::gen::set(&Event::nth, rc::gen::inRange(1U, 120U)),
        rc::gen::set(&Event::trouble, troubles), rc::gen::set(&Event::value, rc::gen::inRange(0U, 12U)));
}

/** A list of at least one and at most so many. */
template <class T>
rc::Gen<std::vector<T>> listOf(size_t least, size_t most, const rc::Gen<T>& element)
{
    return rc::gen::mapcat(rc::gen::inRange(least, most + 1), [element](size_t count) {
        return rc::gen::container<std::vector<T>>(count, element);
    });
}

rc::Gen<Scenario> scenarios()
{
    return rc::gen::build<Scenario>(
        rc::gen::set(&Scenario::sessions, rc::gen::inRange(1U, 3U)),
        rc::gen::set(&Scenario::udevMilliseconds, rc::gen::element(20U, 1U, 20U, 400U, 100U, 1500U)),
        rc::gen::set(&Scenario::isScriptHarmful, rc::gen::weightedElement<bool>({{3, false}, {1, true}})),
        rc::gen::set(&Scenario::hasMultipath, rc::gen::weightedElement<bool>({{3, false}, {1, true}})),
        rc::gen::set(&Scenario::isTidied),
        rc::gen::set(&Scenario::clients, listOf(1, MOST_CLIENTS, listOf(1, 2, jobs()))),
        rc::gen::set(&Scenario::events, rc::gen::container<std::vector<Event>>(events())));
}

const char* nameOf(Trouble trouble)
{
    static constexpr const char* NAMES[] = {"switch",       "kill",       "kill for good", "no answer",
                                            "not sent",     "busy",       "session down",  "udev stalls",
                                            "script",       "taken away", "event lost",    "no descriptors",
                                            "no processes", "maps anew"};
    return NAMES[static_cast<size_t>(trouble)];
}

} // namespace

const char* nameOf(Point point)
{
    static constexpr const char* NAMES[] = {"request", "command", "read", "write",
                                            "inquiry", "lock",    "pause"};
    return NAMES[static_cast<size_t>(point)];
}

std::string textOf(const Scenario& scenario)
{
    std::ostringstream text;
    text << scenario.sessions << " session(s), udev takes " << scenario.udevMilliseconds << " ms"
         << (scenario.isScriptHarmful ? ", the rescan script is harmful" : "")
         << (scenario.hasMultipath ? ", multipath" : "") << (scenario.isTidied ? ", tidied in the end" : "")
         << "\n";
    for (size_t i = 0; i < scenario.clients.size(); ++i) {
        text << "client" << i + 1 << ":";
        for (const Job& job : scenario.clients[i]) {
            text << " LUN " << job.lun << (job.isWhole ? " by LocalDisk" : " step by step") << ", used for "
                 << job.useSeconds << " s;";
        }
        text << "\n";
    }
    for (const Event& event : scenario.events) {
        text << "client" << event.client + 1 << " at " << nameOf(event.point) << " " << event.nth << ": "
             << nameOf(event.trouble) << " (" << event.value << ")\n";
    }
    return text.str();
}

rc::Shrinkable<Scenario> scenarioOf(std::uint64_t seed)
{
    return scenarios()(rc::Random(seed), SIZE);
}

} // namespace simulation

#include "simulation/Host.h"

#include "host/DiskScannerHandlerImpl.h"

#include <tessel/Failure.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <utility>

namespace simulation {
namespace {

constexpr const char* PROGRAMS = "/simulated/bin";
constexpr unsigned LUNS = 4;
constexpr int BUSY_CODE = ovra::tessel::ARRAY_NOT_READY;

/** What the library knows a script by whose -r removes disks that are well, and one that is sound. */
constexpr const char* HARMFUL_SCRIPT = "#!/bin/bash\nmatch=\"PQual=0 Device_type=0\"\n";
constexpr const char* SCRIPT = "#!/bin/bash\nmatch=\"PQual=0 PDT=0\"\n";

Host* g_host = nullptr;

} // namespace

Host::Host(SimulatedArray& simulated, const Scenario& scenario, Weakness fault, bool isLogging)
    : array(simulated), kernel(scheduler, tree, habits), multipath(scheduler, tree, kernel),
      judge(scheduler, array, kernel, multipath), weakness(fault), m_scenario(scenario),
      m_isLogging(isLogging)
{
    g_host = this;
    if (weakness != Weakness::NONE) {
        judge.ignoreLock();
    }
    array.reset(LUNS);
    habits.udevDelay = scenario.udevMilliseconds * 1000;
    for (unsigned i = 1; i <= scenario.sessions; ++i) {
        kernel.add({std::to_string(i), [this] { return array.shown(); }});
    }
    const Unit foreign = {"600a0b80001111110000000000000001", "1", 1U << 20U};
    kernel.add({"3", [foreign] { return std::map<unsigned, Unit>{{1, foreign}}; }});
    if (scenario.hasMultipath) {
        multipath.start(habits.udevDelay);
    }
    kernel.scan("3");
    tree.put("/proc/self/mountinfo", "22 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n");
    tree.put("/proc/swaps", "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n");
    tree.link("/proc/self/ns/pid", "pid:[4026531836]");
    tree.put(std::string(PROGRAMS) + "/rescan-scsi-bus.sh",
             scenario.isScriptHarmful ? HARMFUL_SCRIPT : SCRIPT);
    setenv("PATH", PROGRAMS, 1);
    scheduler.onPoint = [this](Process& process, Point point) { onPoint(process, point); };
    scheduler.ownMemory(&g_scanLunMutex, sizeof(g_scanLunMutex));
    scheduler.ownMemory(&g_scanState, sizeof(g_scanState));
    scheduler.ownMemory(&g_scannerInitialised, sizeof(g_scannerInitialised));
}

Host::~Host()
{
    g_host = nullptr;
}

Host* Host::ofRunning()
{
    return Fiber::running() != nullptr ? g_host : nullptr;
}

void Host::note(const std::string& what)
{
    if (m_isLogging) {
        const std::string who = Fiber::running() != nullptr ? scheduler.current().name : "-";
        m_log.push_back(std::to_string(scheduler.now()) + " " + who + " " + what);
    }
}

std::string Host::run()
{
    for (size_t i = 0; i < m_scenario.clients.size(); ++i) {
        m_clients.push_back(&scheduler.start("client" + std::to_string(i + 1),
                                             [this, i] { doJobs(*this, m_scenario.clients[i]); }));
    }
    for (const Event& event : m_scenario.events) {
        if (event.client < m_clients.size()) {
            m_events[m_clients[event.client]->pid].push_back(event);
        }
    }
    scheduler.run();
    if (m_scenario.isTidied && judge.fault().empty()) {
        scheduler.start("tidy", [this] { doTidy(*this); });
        scheduler.run();
    }
    judge.atRest(m_semaphore);
    if (!judge.fault().empty()) {
        note("FAULT: " + judge.fault());
    }
    return judge.fault();
}

void Host::onPoint(Process& process, Point point)
{
    const auto found = m_events.find(process.pid);
    if (found == m_events.end()) {
        return;
    }
    std::vector<Event>& events = found->second;
    for (size_t i = 0; i < events.size();) {
        const Event event = events[i];
        if (event.point == point && process.reached[static_cast<size_t>(point)] >= event.nth) {
            events.erase(events.begin() + static_cast<std::ptrdiff_t>(i));
            happen(process, event);
        } else {
            ++i;
        }
    }
}

void Host::happen(Process& process, const Event& event)
{
    const std::string where = std::string(" at ") + nameOf(event.point) + " " + std::to_string(event.nth);
    switch (event.trouble) {
    case Trouble::SWITCH:
        scheduler.prefer(m_clients[event.value % m_clients.size()]);
        break;
    case Trouble::KILL:
    case Trouble::KILL_FOR_GOOD:
        note("is killed" + where);
        kill(process, event.trouble == Trouble::KILL);
        break;
    case Trouble::NO_ANSWER:
    case Trouble::NOT_SENT:
    case Trouble::BUSY:
        process.trouble = static_cast<int>(event.trouble);
        break;
    case Trouble::SESSION_DOWN: {
        const std::string session = std::to_string(event.value % 3 + 1);
        if (session == "3" || m_scenario.sessions >= event.value % 3 + 1) {
            note("session " + session + " is down" + where);
            kernel.setUp(session, false);
            scheduler.at(scheduler.now() + (event.value + 1) * SECOND,
                         [this, session] { kernel.setUp(session, true); });
        }
        break;
    }
    case Trouble::UDEV_STALLS:
        note("udev stalls" + where);
        kernel.stallUdev(event.value * SECOND);
        break;
    case Trouble::SCRIPT:
        note("somebody runs the rescan script" + where);
        judge.scansWithoutLock();
        scheduler.start("script", [this] { scanAll(false, 0); });
        break;
    case Trouble::TAKEN_AWAY:
        takeAway(std::to_string(event.value % LUNS + 1));
        break;
    case Trouble::EVENT_LOST:
        kernel.loseEvent();
        break;
    case Trouble::NO_DESCRIPTORS:
        note("has no descriptors" + where);
        judge.meets("times without descriptors");
        process.noDescriptors = event.value + 1;
        break;
    case Trouble::NO_PROCESSES:
        note("can start nothing" + where);
        judge.meets("times without processes");
        process.noProcesses = event.value + 1;
        break;
    case Trouble::MAPS_ANEW:
        if (multipath.isRunning()) {
            note("maps are made anew" + where);
            judge.meets("times that maps were made anew");
            multipath.makeAnew([this](const Map& map) { return isOpen(map); }, event.value * SECOND / 4);
        }
        break;
    case Trouble::COUNT:
        break;
    }
}

void Host::takeAway(const std::string& lun)
{
    const auto groups =
        array.change("GET", "/lungroup/associate?ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + lun, Json::Value())
            .records;
    for (const Json::Value& group : groups) {
        note("an administrator takes LUN " + lun + " away");
        judge.meets("LUNs taken away");
        judge.isTakenAway(lun);
        array.change("DELETE",
                     "/lungroup/associate?ID=" + group["ID"].asString() +
                         "&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + lun,
                     Json::Value());
    }
}

void Host::kill(Process& process, bool isAgain)
{
    const std::optional<Errand> errand = judge.errandOf(process);
    judge.isKilled(process);
    judge.meets("processes killed");
    if (m_scripts[process.pid] != 0) { // it goes on
        judge.scansWithoutLock();
    }
    scheduler.kill(process);
    m_semaphore += weakness == Weakness::UNDO_FORGOTTEN ? 0 : process.undo;
    process.undo = 0;
    process.open.clear();
    if (isAgain && errand) {
        scheduler.start(process.name + "'", [this, again = *errand] { doAgain(*this, again); });
    }
}

int Host::semop(int change, bool isUndone, Time limit)
{
    Process& process = scheduler.current();
    if (!scheduler.reach(Point::LOCK)) {
        errno = EINVAL;
        return -1;
    }
    const auto isFree = [&] { return m_semaphore + change >= 0 || weakness == Weakness::LOCK_OPEN; };
    if (!isFree() && !scheduler.wait(limit == NEVER ? NEVER : scheduler.now() + limit, isFree)) {
        errno = process.isKilled ? EINVAL : EAGAIN;
        return -1;
    }
    m_semaphore = std::max(0, m_semaphore + change);
    process.undo -= isUndone ? change : 0;
    m_lastHolder = process.pid;
    note("takes the lock");
    judge.meets("locks taken");
    return 0;
}

void Host::setFree()
{
    if (scheduler.reach(Point::LOCK)) {
        note("gives the lock back");
        m_semaphore = 1;
        for (Process& process : scheduler.processes()) {
            process.undo = 0;
        }
    }
}

void Host::pause(Time time)
{
    if (scheduler.reach(Point::PAUSE)) {
        scheduler.wait(scheduler.now() + time, nullptr);
    }
}

bool Host::waitForCondition(const void* condition, Time end)
{
    m_told.erase(condition);
    return scheduler.wait(end, [this, condition] { return m_told.count(condition) != 0; });
}

Reply Host::exchange(const SentRequest& request)
{
    Process& process = scheduler.current();
    if (!scheduler.reach(Point::REQUEST)) {
        return Reply::noAnswer();
    }
    const auto trouble = static_cast<Trouble>(std::exchange(process.trouble, -1));
    const bool isChange = request.mode != REST_GET;
    const std::string text = request.text();
    if (trouble == Trouble::NOT_SENT) {
        note(text + ": is not sent");
        judge.isLost();
        return Reply::noAnswer();
    }
    judge.sends(process, text, isChange);
    if (trouble == Trouble::BUSY) {
        note(text + ": busy");
        judge.isRefused(process);
        return Reply::error(BUSY_CODE, "busy");
    }
    if (isChange && weakness == Weakness::SENT_TWICE) {
        array.answer(request);
        judge.sends(process, text, isChange);
    }
    const Reply reply = array.answer(request);
    note(text + ": " + std::to_string(reply.code));
    if (reply.code != 0) {
        judge.isRefused(process);
    }
    if (trouble == Trouble::NO_ANSWER) {
        note("gets no answer");
        judge.isLost();
        return Reply::noAnswer();
    }
    return scheduler.reach(Point::REQUEST) ? reply : Reply::noAnswer();
}

} // namespace simulation

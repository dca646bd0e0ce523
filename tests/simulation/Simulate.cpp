// Runs seeds of the simulation: scripts/simulate.

#include "simulation/Host.h"

#include <CLI/CLI.hpp>
#include <rapidcheck.h>
#include <tessel/DeviceManager.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <iterator>
#include <map>
#include <utility>

using namespace simulation;

namespace {

/** The SDK with the array, in this process. */
class Runs
{
public:
    explicit Runs(Weakness weakness) : m_weakness(weakness)
    {
        // What a process does once in its life is done: the objects that say so are this program's, one for
        // all.
        faultOf({1, 1, false, false, true, {{{1, true, 0}, {1, false, 0}}}, {}});
    }

    ~Runs() { CDeviceManager::releaseInstance(m_first); }
    Runs(const Runs&) = delete;
    Runs& operator=(const Runs&) = delete;

    std::string faultOf(const Scenario& scenario, std::vector<std::string>* log = nullptr)
    {
        m_platform.reset();
        m_platform.replyWith([](const SentRequest& request) { return Host::ofRunning()->exchange(request); });
        Host host(m_array, scenario, m_weakness, log != nullptr);
        std::string fault = host.run();
        m_steps += host.steps();
        for (const auto& [what, count] : host.judge.met()) {
            m_met[what] += count;
        }
        if (log != nullptr) {
            *log = host.log();
        }
        return fault;
    }

    /** A scenario that fails too, and has fewer events. */
    Scenario shrunk(rc::Shrinkable<Scenario> failing)
    {
        for (;;) {
            auto smaller = failing.shrinks();
            for (;;) {
                auto candidate = smaller.next();
                if (!candidate) {
                    return failing.value();
                }
                if (!faultOf(candidate->value()).empty()) {
                    failing = *candidate;
                    break;
                }
            }
        }
    }

    unsigned long steps() const { return m_steps; }
    /** How often what was met, in all runs. */
    const std::map<std::string, unsigned long>& met() const { return m_met; }

private:
    const Weakness m_weakness;
    RecordingPlatform& m_platform = RecordingPlatform::get();
    CDeviceManager* const m_first =
        CDeviceManager::getInstance(3, 100000); // those of the processes start no log
    SimulatedArray m_array;
    unsigned long m_steps = 0;
    std::map<std::string, unsigned long> m_met;
};

constexpr std::pair<const char*, Weakness> WEAKNESSES[] = {
    {"none", Weakness::NONE},
    {"lock-open", Weakness::LOCK_OPEN},
    {"undo-forgotten", Weakness::UNDO_FORGOTTEN},
    {"sent-twice", Weakness::SENT_TWICE},
    {"removed-by-name", Weakness::REMOVED_BY_NAME},
    {"without-lock", Weakness::WITHOUT_LOCK},
};

void print(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines) {
        std::cout << line << "\n";
    }
}

/** Tells a seed that fails, and a smaller scenario that fails as well. */
void tell(Runs& runs, std::uint64_t seed, const std::string& fault)
{
    const auto scenario = scenarioOf(seed);
    std::cout << "seed " << seed << ": " << fault << "\n" << textOf(scenario.value());
    const Scenario small = runs.shrunk(scenario);
    std::vector<std::string> log;
    runs.faultOf(small, &log);
    std::cout << "\nA smaller one:\n" << textOf(small) << "\n";
    print(log);
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app(
        "Runs seeds of the simulation of a host, its processes and an array. Status 1: one has a fault.");
    std::uint64_t seeds = 1000;
    std::uint64_t first = 1;
    bool isLogged = false;
    bool isTwice = false;
    Weakness weakness = Weakness::NONE;
    app.add_option("seeds", seeds, "How many");
    app.add_option("first", first, "The first one");
    app.add_flag("--log", isLogged, "Print what happens in each");
    app.add_flag("--twice", isTwice, "Run each twice: the logs must not differ by a byte");
    app.add_option("--weakness", weakness, "A fault that is to be found")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, Weakness>(std::begin(WEAKNESSES), std::end(WEAKNESSES))));
    CLI11_PARSE(app, argc, argv);

    const auto start = std::chrono::steady_clock::now();
    Runs runs(weakness);
    for (std::uint64_t seed = first; seed < first + seeds; ++seed) {
        const Scenario scenario = scenarioOf(seed).value();
        std::vector<std::string> log;
        std::vector<std::string> again;
        const std::string fault = runs.faultOf(scenario, isLogged || isTwice ? &log : nullptr);
        if (isLogged) {
            print(log);
        }
        if (!fault.empty()) {
            tell(runs, seed, fault);
            return weakness == Weakness::NONE ? 1 : 0;
        }
        if (isTwice && (runs.faultOf(scenario, &again), log != again)) {
            const auto differing = std::mismatch(log.begin(), log.end(), again.begin(), again.end());
            std::cout << "seed " << seed << " has two logs:\n"
                      << (differing.first == log.end() ? "the end" : *differing.first) << "\n"
                      << (differing.second == again.end() ? "the end" : *differing.second) << "\n";
            return 1;
        }
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::cout << seeds << " seeds from " << first << ": nothing found in " << runs.steps() << " steps, "
              << taken.count() << " s\n";
    for (const auto& [what, count] : runs.met()) {
        std::cout << "  " << count << " " << what << "\n";
    }
    return weakness == Weakness::NONE ? 0 : 1;
}

// Fails one allocation, or one call of the system, after another, each in a process of its own that does a
// round of operations against a simulated array, and tells what came of it. Ends with status 0 when nothing
// was wrong, 77 where a process may have no file systems of its own.

#include "Exceptions.h"
#include "StubHost.h"
#include "Trial.h"

#include "ArraySim.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <map>
#include <sched.h>
#include <set>
#include <string>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using tessel_test::ArraySim;
using namespace torture;

namespace {

constexpr int SKIPPED = 77;
constexpr long MOST_TOLD = 12; ///< of what is wrong, in full

struct Options
{
    std::vector<std::string> families = {"memory", "calls"};
    std::vector<std::string> states = {"warm", "cold"};
    std::vector<std::string> modes = {"once", "lasting", "interrupted"};
    long most = 0;        ///< trials of each kind; 0: all
    bool isEvery = false; ///< every call, and not one of each place
    long number = -1;     ///< this one alone
    unsigned jobs = 2;
};

struct Kind
{
    std::string name;
    State state;
    Family family;
    Mode mode;
};

/** Of one kind of trials; shared by the processes that run them. */
struct Totals
{
    std::atomic<long> calls, places, trials, fired, crashes, declared[std::size(EXCEPTIONS)], hangs, leaks,
        unknown, sessions, wrong, told;
};

const std::map<std::string, Family>& families()
{
    static const std::map<std::string, Family> all = {{"memory", Family::MEMORY}, {"calls", Family::CALLS}};
    return all;
}

const std::map<std::string, State>& states()
{
    static const std::map<std::string, State> all = {{"warm", State::WARM}, {"cold", State::COLD}};
    return all;
}

const std::map<std::string, Mode>& modes()
{
    static const std::map<std::string, Mode> all = {
        {"once", Mode::ONCE}, {"lasting", Mode::LASTING}, {"interrupted", Mode::INTERRUPTED}};
    return all;
}

std::vector<Kind> kindsOf(const Options& options)
{
    std::vector<Kind> kinds;
    for (const std::string& family : options.families) {
        for (const std::string& state : options.states) {
            for (const std::string& mode : options.modes) {
                if (family != "memory" || mode != "interrupted") { // no signal interrupts an allocation
                    kinds.push_back({family + ", " + state + ", " + mode, states().at(state),
                                     families().at(family), modes().at(mode)});
                }
            }
        }
    }
    return kinds;
}

/** One of the processes that run trials: an array and a host of its own. */
class Worker
{
public:
    Worker(const Options& options, const ArraySim& array, unsigned index)
        : m_options(options), m_array(array), m_index(index),
          m_trials({array.ip(), array.port(), array.user(), array.password()})
    {
        prepareArray();
    }

    /** Of a process that is warm from now on. */
    bool isRoundGood() const
    {
        const Seen seen = runRound({m_array.ip(), m_array.port(), m_array.user(), m_array.password()});
        std::fprintf(stderr, "%s", seen.firstFailure);
        return seen.failures == 0 && seen.problems == 0;
    }

    void run(const Kind& kind, Totals& totals)
    {
        prepareArray();
        Verdict verdict;
        const Places& places = m_trials.look(kind.state, {kind.family, kind.mode, -1}, verdict);
        if (!verdict.told.empty() || verdict.hasCrashed || verdict.hangs) {
            tell(kind, -1, totals, verdict, "without a fault");
            ++totals.wrong;
            return;
        }
        prepareArray();
        const std::vector<long> numbers = chosen(places, totals);
        for (size_t i = m_index; i < numbers.size(); i += m_options.jobs) {
            const Plan plan = {kind.family, kind.mode, numbers[i]};
            judge(kind, plan.number, m_trials.run(kind.state, plan, verdict.blocks), totals);
            prepareArray();
        }
    }

private:
    void prepareArray() const
    {
        m_array.reset();
        Json::Value initiator;
        initiator["ID"] = INITIATOR;
        m_array.create("iscsi_initiator", initiator);
        for (const auto& file : std::filesystem::directory_iterator(TORTURE_LOGS)) {
            std::filesystem::remove(file);
        }
    }

    /** Which calls are to fail: one of each place, or all; not more than wanted. */
    std::vector<long> chosen(const Places& places, Totals& totals) const
    {
        if (m_options.number >= 0) {
            return {m_options.number};
        }
        std::vector<long> numbers;
        std::set<uint64_t> known;
        for (long i = 0; i < std::min<long>(places.reached, Places::MOST); ++i) {
            if (known.insert(places.hashes[i]).second || m_options.isEvery) {
                numbers.push_back(i);
            }
        }
        totals.calls = places.reached;
        totals.places = static_cast<long>(known.size());
        const auto most = static_cast<size_t>(m_options.most);
        if (most == 0 || numbers.size() <= most) {
            return numbers;
        }
        std::vector<long> some;
        for (size_t i = 0; i < most; ++i) {
            some.push_back(numbers[i * numbers.size() / most]);
        }
        return some;
    }

    void judge(const Kind& kind, long number, const Verdict& verdict, Totals& totals) const
    {
        ++totals.trials;
        totals.fired += verdict.hasFired || verdict.hasCrashed || verdict.hangs ? 1 : 0;
        const auto* const known = std::find_if(std::begin(EXCEPTIONS), std::end(EXCEPTIONS),
                                               [&](const Exception& each) { return isOne(each, verdict); });
        if (known != std::end(EXCEPTIONS)) {
            ++totals.declared[known - std::begin(EXCEPTIONS)];
            return;
        }
        if (verdict.hasCrashed) {
            ++totals.crashes;
            tell(kind, number, totals, verdict);
            return;
        }
        totals.hangs += verdict.hangs ? 1 : 0;
        totals.leaks += verdict.leaks ? 1 : 0;
        totals.unknown += verdict.isUnknown ? 1 : 0;
        const bool isLeft =
            !verdict.hangs && verdict.isSessionKnown && m_array.counters()["sessions"].asUInt() != 0;
        totals.sessions += isLeft ? 1 : 0;
        totals.wrong += verdict.told.empty() || verdict.leaks || verdict.hangs ? 0 : 1;
        if (verdict.hangs || isLeft || !verdict.told.empty()) {
            tell(kind, number, totals, verdict, isLeft ? "a session is left behind" : "");
        }
    }

    static bool isOne(const Exception& exception, const Verdict& verdict)
    {
        if (exception.isCrash) {
            return verdict.hasCrashed && verdict.told.find(exception.where) != std::string::npos &&
                   verdict.stack.find(exception.told) != std::string::npos;
        }
        return !verdict.hasCrashed && !verdict.hangs &&
               verdict.stack.find(exception.where) != std::string::npos &&
               verdict.told.rfind(exception.told, 0) == 0 &&
               verdict.told.find('\n') + 1 == verdict.told.size();
    }

    static void tell(const Kind& kind, long number, Totals& totals, const Verdict& verdict,
                     const std::string& what = "")
    {
        if (++totals.told <= MOST_TOLD) {
            const std::string text = "[" + kind.name + " " + std::to_string(number) + "] " + what +
                                     (verdict.hangs ? "hangs" : "") + "\n" + verdict.told +
                                     "failed first:\n" + verdict.stack;
            std::fputs(text.c_str(), stdout);
            std::fflush(stdout);
        }
    }

    const Options& m_options;
    const ArraySim& m_array;
    const unsigned m_index;
    Trials m_trials;
};

/** The first process of its own small system. */
int work(const Options& options, const ArraySim& array, unsigned index, const std::vector<Kind>& kinds,
         Totals* totals)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (!enterStubHost(TORTURE_LOGS)) {
        return SKIPPED;
    }
    setenv("OVRA_REST_CA_FILE", array.caFile().c_str(), 1);
    setenv("OVRA_REST_CONNECT_TIMEOUT_S", "5", 1);
    setenv("OVRA_REST_TIMEOUT_S", "5", 1);
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    Worker worker(options, array, index);
    if (!worker.isRoundGood() || !worker.isRoundGood()) {
        std::puts("a round without any fault fails");
        return 1;
    }
    for (size_t i = 0; i < kinds.size(); ++i) {
        worker.run(kinds[i], totals[i]);
    }
    return 0;
}

int startWorker(const Options& options, unsigned index, const std::vector<Kind>& kinds, Totals* totals)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const ArraySim array;
    if (unshare(CLONE_NEWNS | CLONE_NEWIPC | CLONE_NEWPID) != 0) {
        std::perror("namespaces");
        return SKIPPED;
    }
    const pid_t process = fork();
    if (process == 0) {
        int result = 1;
        try {
            result = work(options, array, index, kinds, totals);
        } catch (const std::exception& error) {
            std::printf("%s\n", error.what());
        }
        std::fflush(nullptr);
        _exit(result);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

bool print(const std::vector<Kind>& kinds, const Totals* totals)
{
    long bad = 0;
    std::printf("%-28s %8s %7s %7s %7s %8s %9s %6s %6s %8s %9s %6s\n", "", "calls", "places", "trials",
                "failed", "crashes", "declared", "hangs", "leaks", "unknown", "sessions", "wrong");
    for (size_t i = 0; i < kinds.size(); ++i) {
        const Totals& each = totals[i];
        long declared = 0;
        for (const auto& count : each.declared) {
            declared += count;
        }
        std::printf("%-28s %8ld %7ld %7ld %7ld %8ld %9ld %6ld %6ld %8ld %9ld %6ld\n", kinds[i].name.c_str(),
                    each.calls.load(), each.places.load(), each.trials.load(), each.fired.load(),
                    each.crashes.load(), declared, each.hangs.load(), each.leaks.load(), each.unknown.load(),
                    each.sessions.load(), each.wrong.load());
        bad += each.crashes + each.hangs + each.leaks + each.sessions + each.wrong;
    }
    for (size_t i = 0; i < std::size(EXCEPTIONS); ++i) {
        long count = 0;
        for (size_t kind = 0; kind < kinds.size(); ++kind) {
            count += totals[kind].declared[i];
        }
        if (count != 0) {
            std::printf("declared: %ld in %s: %s\n", count, EXCEPTIONS[i].where, EXCEPTIONS[i].what);
        }
    }
    return bad == 0;
}

int runAll(const Options& options)
{
    const auto start = std::chrono::steady_clock::now();
    const std::vector<Kind> kinds = kindsOf(options);
    auto* const totals = static_cast<Totals*>(mmap(
        nullptr, kinds.size() * sizeof(Totals), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    std::vector<pid_t> workers;
    for (unsigned index = 0; index < options.jobs; ++index) {
        workers.push_back(fork());
        if (workers.back() == 0) {
            const int result = startWorker(options, index, kinds, totals);
            std::fflush(nullptr);
            _exit(result);
        }
    }
    int result = 0;
    for (const pid_t worker : workers) {
        int status = 0;
        waitpid(worker, &status, 0);
        result = std::max(result, WIFEXITED(status) ? WEXITSTATUS(status) : 1);
    }
    if (result != 0) {
        return result;
    }
    const bool isGood = print(kinds, totals);
    std::printf("%.0f s\n", std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return isGood ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Fails one allocation or call after another, and looks at what the SDK makes of it.",
                 "torture");
    app.add_option("--family", options.families, "What fails: memory, calls")
        ->check(CLI::IsMember(families()));
    app.add_option("--state", options.states, "Of the process: warm, cold")->check(CLI::IsMember(states()));
    app.add_option("--mode", options.modes, "How: once, lasting, interrupted")->check(CLI::IsMember(modes()));
    app.add_option("--most", options.most, "Trials of each kind at most; 0: all")
        ->check(CLI::Range(0, 1000000));
    app.add_flag("--every", options.isEvery, "Every call, and not one of each place that calls");
    app.add_option("--number", options.number, "This call alone");
    app.add_option("--jobs", options.jobs, "Processes that run trials")->check(CLI::Range(1, 64));
    CLI11_PARSE(app, argc, argv);
    return runAll(options);
}

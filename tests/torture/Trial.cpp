#include "Trial.h"

#include "StubHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <openssl/crypto.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace torture {
namespace {

constexpr int LIMIT_MS = 20000; // of a trial that takes a fraction of a second
constexpr int REPEATS = 4;      // after which what has grown each time is a leak
constexpr int MOST_REPEATS = 8; // for rounds that do not come to the place
constexpr key_t RESCAN_KEY = 1235;

/** What a trial tells by numbers. */
struct Result
{
    bool hasFired;
    bool isSessionKnown;
    bool leaks;
    bool isUnknown; ///< whether it leaks: the place is not reached again
    long blocks;
};

void tell(const char* what)
{
    dprintf(STDERR_FILENO, "%s\n", what);
}

int memoryFile(const char* name)
{
    const int file = memfd_create(name, 0); // a cold trial inherits it
    if (file < 0) {
        throw std::runtime_error("memfd_create");
    }
    return file;
}

std::string contentOf(int file)
{
    std::string content(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    content.resize(static_cast<size_t>(std::max<ssize_t>(0, pread(file, content.data(), content.size(), 0))));
    return content;
}

/** The lock of the scans is there and free, or not there. */
bool isLockFree()
{
    const int set = semget(RESCAN_KEY, 1, 0);
    return set < 0 || semctl(set, 0, GETVAL) == 1;
}

long entriesIn(const char* directory)
{
    const auto all = std::filesystem::directory_iterator(directory);
    return std::distance(begin(all), end(all));
}

struct Use
{
    bool isMoreThan(const Use& other) const
    {
        return blocks > other.blocks || descriptors > other.descriptors;
    }

    long blocks = 0;
    long descriptors = 0;
};

Use inUse()
{
    for (int looks = 0; entriesIn("/proc/self/task") > 1 && looks < 2000; ++looks) {
        const timespec pause = {0, 500000}; // a thread that has done its work is about to end
        nanosleep(&pause, nullptr);
    }
    OPENSSL_thread_stop(); // its queue of errors grows to a limit
    return {liveBlocks(), entriesIn("/proc/self/fd")};
}

/** What is to work whatever was before. */
Use afterGoodRound(const Target& target, Mode mode)
{
    if (mode != Mode::LASTING && !isLockFree()) { // else no call could give it back
        tell("the lock of the scans is left behind");
    }
    takeDisk();
    const Seen seen = runRound(target);
    if (seen.failures != 0) {
        dprintf(STDERR_FILENO, "the next round fails, %s\n", seen.firstFailure);
    }
    if (isDiskThere()) {
        tell("the next round leaves the disk");
    }
    if (!isLockFree()) {
        tell("the next round leaves the lock of the scans");
    }
    return inUse();
}

/** So that each round starts as the first one of its process does: with connections of its own. */
void endConnections()
{
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        shutdown(std::atoi(entry.path().filename().c_str()), SHUT_RDWR); // what is no socket stays as it is
    }
}

/**
 * The first round is armed. What the first fault at a place costs may be kept for good; what each costs is a
 * leak. The place decides: the call of the same number may be another one in each round, and cost for the
 * first time again.
 */
Result runTrial(const Target& target, const Plan& plan, bool canRepeat, long blocks)
{
    Result result = {false, true, false, false, 0};
    Plan again = plan;
    Use first;
    Use before;
    int grown = 0;
    bool isAlwaysMore = true;
    // The first round is one of the loop, for the stack is to be the same each time.
    for (int repeats = 0; repeats <= MOST_REPEATS && grown < REPEATS; ++repeats) {
        if (repeats > 0) {
            endConnections();
            arm(again);
        }
        result.isSessionKnown = runRound(target).isSessionKnown && result.isSessionKnown;
        disarm();
        const bool fired = hasFired();
        const Use after = afterGoodRound(target, plan.mode);
        if (repeats == 0) {
            result.hasFired = fired;
            result.blocks = after.blocks;
            if (!canRepeat || !fired || blocks == 0 || after.blocks <= blocks) {
                return result;
            }
            again.place = placeFired();
            again.number = 0;
            first = after;
        } else {
            const bool isMore = after.isMoreThan(before);
            if (fired && !isMore) {
                return result;
            }
            grown += fired ? 1 : 0;
            isAlwaysMore = isAlwaysMore && isMore; // with no fault either
        }
        before = after;
    }
    result.leaks = grown == REPEATS || isAlwaysMore;
    result.isUnknown = !result.leaks;
    if (result.leaks) {
        dprintf(STDERR_FILENO,
                "in use after a fault: %ld blocks, %ld descriptors; after %d more there %ld and %ld\n",
                first.blocks, first.descriptors, grown, before.blocks, before.descriptors);
    }
    return result;
}

void tellResult(int file, const Result& result)
{
    if (pwrite(file, &result, sizeof(result), 0) != static_cast<ssize_t>(sizeof(result))) {
        tell("the result cannot be told");
    }
}

} // namespace

Trials::Trials(Target target)
    : m_target(std::move(target)), m_told(memoryFile("told")), m_stack(memoryFile("stack")),
      m_result(memoryFile("result")), m_placesFile(memoryFile("places")),
      m_places(ftruncate(m_placesFile, sizeof(Places)) == 0
                   ? static_cast<Places*>(
                         mmap(nullptr, sizeof(Places), PROT_READ | PROT_WRITE, MAP_SHARED, m_placesFile, 0))
                   : nullptr)
{
}

Trials::~Trials()
{
    munmap(m_places, sizeof(Places));
    for (const int file : {m_told, m_stack, m_result, m_placesFile}) {
        close(file);
    }
}

Verdict Trials::run(State state, const Plan& plan, long blocks)
{
    return run(state, plan, blocks, false);
}

const Places& Trials::look(State state, const Plan& plan, Verdict& verdict)
{
    verdict = run(state, {plan.family, plan.mode, -1}, 0, true);
    return *m_places;
}

/** What the process of a trial does. */
void Trials::begin(State state, const Plan& plan, long blocks, bool isLook) const
{
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(m_told, STDERR_FILENO);
    if (state == State::WARM) {
        tellWhereItFires(m_stack);
        arm(plan, isLook ? m_places : nullptr);
        tellResult(m_result, runTrial(m_target, plan, true, blocks));
        _exit(0);
    }
    semctl(semget(RESCAN_KEY, 1, 0), 0, IPC_RMID); // whoever comes first makes it
    char armed[64];
    char port[16];
    char result[16];
    snprintf(armed, sizeof(armed), "%d:%d:%ld:%d:%d", static_cast<int>(plan.family),
             static_cast<int>(plan.mode), plan.number, isLook ? m_placesFile : -1, m_stack);
    snprintf(port, sizeof(port), "%u", m_target.port);
    char mode[16];
    snprintf(result, sizeof(result), "%d", m_result);
    snprintf(mode, sizeof(mode), "%d", static_cast<int>(plan.mode));
    setenv("TORTURE", armed, 1);
    execl(TORTURE_COLD, TORTURE_COLD, m_target.ip.c_str(), port, m_target.user.c_str(),
          m_target.password.c_str(), result, mode, nullptr);
    _exit(126);
}

Verdict Trials::run(State state, const Plan& plan, long blocks, bool isLook)
{
    Result result = {};
    if (ftruncate(m_told, 0) != 0 || ftruncate(m_stack, 0) != 0 || lseek(m_told, 0, SEEK_SET) != 0 ||
        lseek(m_stack, 0, SEEK_SET) != 0 ||
        pwrite(m_result, &result, sizeof(result), 0) != static_cast<ssize_t>(sizeof(result))) {
        throw std::runtime_error("the report of a trial");
    }
    const pid_t process = fork();
    if (process == 0) {
        begin(state, plan, blocks, isLook);
    }
    pollfd ended = {static_cast<int>(syscall(SYS_pidfd_open, process, 0)), POLLIN, 0};
    Verdict verdict;
    verdict.hangs = poll(&ended, 1, LIMIT_MS) == 0;
    if (verdict.hangs) {
        kill(process, SIGABRT); // tells where it hangs
        poll(&ended, 1, LIMIT_MS / 10);
        kill(process, SIGKILL);
    }
    close(ended.fd);
    int status = 0;
    waitpid(process, &status, 0);
    while (waitpid(-1, nullptr, WNOHANG) > 0) { // those that it has left behind
    }
    verdict.told = contentOf(m_told);
    verdict.stack = contentOf(m_stack);
    verdict.hasCrashed = !verdict.hangs && status != 0;
    if (verdict.hasCrashed && WIFEXITED(status)) {
        verdict.told += "ended with status " + std::to_string(WEXITSTATUS(status)) + "\n";
    }
    if (pread(m_result, &result, sizeof(result), 0) == static_cast<ssize_t>(sizeof(result))) {
        verdict.hasFired = result.hasFired;
        verdict.isSessionKnown = result.isSessionKnown;
        verdict.leaks = result.leaks;
        verdict.isUnknown = result.isUnknown;
        verdict.blocks = result.blocks;
    }
    return verdict;
}

void runColdTrial(char** arguments)
{
    Target target;
    {
        const Aside aside;
        target = {arguments[1], static_cast<unsigned>(std::atoi(arguments[2])), arguments[3], arguments[4]};
        unsetenv("TORTURE"); // the tools are started well
    }
    tellResult(std::atoi(arguments[5]),
               runTrial(target, {Family::MEMORY, static_cast<Mode>(std::atoi(arguments[6])), -1}, false, 0));
    _exit(0); // the end of a process is another matter
}

} // namespace torture

#include "host/CommandLines.h"
#include "host/Interruption.h"
#include "host/KxRescanLock.h"
#include "support/OwnIpcNamespace.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <sys/sem.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace ovra::tessel;

class RealShell : public testing::Test
{
protected:
    RealShell()
    {
        setenv("PATH", "/usr/bin:/bin", 1);
        for (const int signal : {SIGINT, SIGQUIT}) {
            std::signal(signal, SIG_DFL); // a test in the background ignores them, and hands that on
        }
    }
};

TEST_F(RealShell, ThatIsEndedFromTheKeyboardInterruptsTheScan)
{
    for (const char* const command :
         {"kill -INT $$", "kill -QUIT $$", "sh -c 'kill -INT $$'; exit $?", "echo | sh -c 'kill -INT $$'"}) {
        EXPECT_THROW(runCommand(command), Interruption) << command;
        CommandLines listing(command);
        std::string line;
        EXPECT_THROW(listing.next(line), Interruption) << command;
    }
    EXPECT_EQ(WTERMSIG(runCommand("kill -TERM $$")), SIGTERM);
}

TEST_F(RealShell, IsReadToTheEndWhileSignalsArrive)
{
    struct sigaction action = {}, before = {};
    action.sa_handler = [](int) {}; // without SA_RESTART: reading is interrupted
    sigaction(SIGALRM, &action, &before);
    const itimerval often = {{0, 2000}, {0, 2000}}, never = {};
    setitimer(ITIMER_REAL, &often, nullptr);
    CommandLines listing("for i in 1 2 3 4 5; do printf 'line '; sleep 0.02; echo $i; done");
    std::string line, last;
    int lines = 0;
    for (; listing.next(line); ++lines) {
        last = line;
    }
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_EQ(lines, 5);
    EXPECT_EQ(last, "line 5");
}

namespace {

constexpr int SKIPPED = 77;
constexpr key_t RESCAN_KEY = 1235;

/** What a process with semaphores of its own ends with. */
int inOwnNamespace(const std::function<bool()>& holds)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(!enterOwnIpcNamespace() ? SKIPPED : holds() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
}

int setsOfThisHost()
{
    seminfo info = {};
    semctl(0, 0, SEM_INFO, &info);
    return info.semusz;
}

} // namespace

TEST(RealSemaphores, OfAHostThatHadNoneNeverHaveTheIdZero)
{
    const int status = inOwnNamespace([] {
        KxRescanLock lock;
        return lock.InitLock() == 0 && semget(RESCAN_KEY, 1, 0) > 0 && setsOfThisHost() == 1;
    });
    if (status == SKIPPED) {
        GTEST_SKIP() << "no rights to make an IPC namespace";
    }
    EXPECT_EQ(status, 0);
}

TEST(RealSemaphores, ThatAreHeldStayHeldWhenAnotherProgramStarts)
{
    const int status = inOwnNamespace([] {
        KxRescanLock lock;
        const bool held = lock.InitLock() == 0 && lock.GetLock() == 0;
        const int set = semget(RESCAN_KEY, 1, 0);
        return held && lock.InitLock() == 0 && semctl(set, 0, GETVAL) == 0 && lock.ReleaseLock() == 0 &&
               semctl(set, 0, GETVAL) == 1;
    });
    if (status == SKIPPED) {
        GTEST_SKIP() << "no rights to make an IPC namespace";
    }
    EXPECT_EQ(status, 0);
}

// Tools of the host that run when the call that needs them is ended; real ones.

#include "host/CommandLines.h"
#include "session/CallsAtWork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tessel/Calls.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace ovra::tessel;
using std::chrono::milliseconds;

namespace {

using Clock = std::chrono::steady_clock;

constexpr milliseconds PROMISED{50};
constexpr milliseconds SOON{1000}; ///< on a slow machine, or one of sanitizers
constexpr int PATIENCE_MS = 20000;
constexpr int TOLD_BY = 9; ///< a descriptor that a shell can name

/** All that a command starts has the pipe open, and says a word when it is there. */
class ACommandOfACall : public testing::Test
{
protected:
    ACommandOfACall()
    {
        setenv("PATH", "/usr/bin:/bin", 1); // other tests take it away
        int ends[2] = {-1, -1};
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        m_read = ends[0];
        EXPECT_EQ(dup2(ends[1], TOLD_BY), TOLD_BY);
        close(ends[1]);
    }
    ~ACommandOfACall() override
    {
        close(TOLD_BY);
        close(m_read);
    }

    void waitForWord() const
    {
        char word[4] = {};
        EXPECT_EQ(read(m_read, word, 3), 3);
    }

    /** Whether nobody but this process has the pipe. */
    bool isNobodyLeft() const
    {
        close(TOLD_BY);
        pollfd polled = {m_read, POLLIN, 0};
        char byte = 0;
        return poll(&polled, 1, PATIENCE_MS) == 1 && read(m_read, &byte, 1) == 0;
    }

    /** Whether no child is left that nobody has waited for. */
    static bool isEachCollected()
    {
        const auto patience = Clock::now() + milliseconds(PATIENCE_MS);
        siginfo_t child = {};
        while (waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0 && Clock::now() < patience) {
            std::this_thread::sleep_for(milliseconds(1));
        }
        return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == -1 && errno == ECHILD;
    }

    /** Runs it, and ends the call when it is there; how long it went on then. */
    milliseconds cancelled(const std::function<void()>& run) const
    {
        const Cancellation cancellation;
        Clock::time_point at;
        std::thread other([&] {
            waitForWord();
            at = Clock::now();
            cancellation.cancel();
        });
        FailureKind why = FailureKind::NONE;
        {
            const CallLimit limit(cancellation);
            try {
                run();
            } catch (const CallEnded& ended) {
                why = ended.why;
            }
        }
        const Clock::time_point end = Clock::now();
        other.join();
        EXPECT_EQ(why, FailureKind::CANCELLED);
        return std::chrono::duration_cast<milliseconds>(end - at);
    }

private:
    int m_read = -1;
};

const std::string SLEEPING = "sleep 600";

class ACommandOfAForm : public ACommandOfACall, public testing::WithParamInterface<std::string>
{
};

} // namespace

TEST_P(ACommandOfAForm, IsEndedWithAllThatItHasStarted)
{
    EXPECT_LT(cancelled([&] { runCommand(GetParam()); }), SOON);
    EXPECT_TRUE(isNobodyLeft());
    EXPECT_TRUE(isEachCollected());
}

TEST_P(ACommandOfAForm, IsEndedWhereItsOutputIsRead)
{
    EXPECT_LT(cancelled([&] { const CommandLines lines(GetParam()); }), SOON);
    EXPECT_TRUE(isNobodyLeft());
    EXPECT_TRUE(isEachCollected());
}

INSTANTIATE_TEST_SUITE_P(Forms, ACommandOfAForm,
                         testing::Values("echo up >&9; exec sleep 600", "echo up >&9; sleep 600; true",
                                         "sleep 600 & sleep 600 | sleep 600 & echo up >&9; wait",
                                         "timeout 600 sh -c 'echo up >&9; sleep 600; true'",
                                         "trap '' TERM INT HUP; echo up >&9; sleep 600; sleep 600",
                                         "(setsid sh -c 'sleep 600 & echo up >&9; wait'); true",
                                         "echo up >&9; while :; do sleep 0.001; done"));

TEST_F(ACommandOfACall, EndsWithinFiftyMillisecondsWhereTheMachineHasTime)
{
    std::vector<milliseconds> took;
    for (int i = 0; i < 9; ++i) {
        took.push_back(cancelled([] { runCommand("timeout 600 sh -c 'echo up >&9; sleep 600; true'"); }));
    }
    std::sort(took.begin(), took.end());
    EXPECT_LE(took[took.size() / 4], PROMISED) << "others may have had the processor in some";
}

TEST_F(ACommandOfACall, EndsWhenItsTimeIsUp)
{
    const CallLimit limit(milliseconds(100));
    try {
        runCommand(SLEEPING);
        ADD_FAILURE();
    } catch (const CallEnded& ended) {
        EXPECT_EQ(ended.why, FailureKind::TIMED_OUT);
    }
    EXPECT_TRUE(isNobodyLeft());
}

TEST_F(ACommandOfACall, IsStoppedBeforeItIsEndedSoThatItStartsNothingMeanwhile)
{
    static std::atomic<bool> wasStopped{false}; // a child of this process
    struct sigaction noting = {};
    struct sigaction before = {};
    noting.sa_flags = SA_SIGINFO | SA_RESTART;
    noting.sa_sigaction = [](int, siginfo_t* told, void*) {
        wasStopped = wasStopped || told->si_code == CLD_STOPPED;
    };
    sigaction(SIGCHLD, &noting, &before);
    for (int i = 0; i < 50 && !wasStopped; ++i) { // one that gets no processor meanwhile dies unstopped
        cancelled([] { runCommand("echo up >&9; exec sleep 600"); });
    }
    EXPECT_TRUE(isEachCollected());
    sigaction(SIGCHLD, &before, nullptr);
    EXPECT_TRUE(wasStopped);
}

TEST_F(ACommandOfACall, LeavesWhatTheProgramItselfHasStarted)
{
    const pid_t own = fork();
    if (own == 0) {
        close(TOLD_BY);
        execl("/bin/sleep", "sleep", "600", nullptr);
        _exit(1);
    }
    cancelled([] { runCommand("echo up >&9; sleep 600; true"); });
    EXPECT_EQ(waitpid(own, nullptr, WNOHANG), 0) << "it goes on";
    kill(own, SIGKILL);
    EXPECT_EQ(waitpid(own, nullptr, 0), own);
}

TEST_F(ACommandOfACall, IsNotBegunByACallThatHasEnded)
{
    const Cancellation cancellation;
    cancellation.cancel();
    const CallLimit limit(cancellation);
    EXPECT_THROW(runCommand("echo up >&9"), CallEnded);
    EXPECT_THROW(CommandLines("echo up >&9"), CallEnded);
    EXPECT_TRUE(isNobodyLeft()) << "a word was said";
}

TEST_F(ACommandOfACall, TellsWhatItPrintedAndHowItEndedAsWithoutALimit)
{
    const auto read = [] {
        std::string all;
        CommandLines lines("printf 'one\\n\\ntwo'; exit 0");
        for (std::string line; lines.next(line);) {
            all += line + "|";
        }
        return all;
    };
    const std::string before = read();
    const CallLimit limit(std::chrono::hours(1));
    EXPECT_EQ(runCommand("exit 3"), 3 << 8);
    EXPECT_EQ(read(), before);
    EXPECT_EQ(before, "one||two|");
}

TEST_F(ACommandOfACall, IsRunByTheThreadOfTheCallWhereThereIsNoLimit)
{
    // Who has started it is its parent in the kernel's list of that thread alone.
    const std::string tasks = "/proc/" + std::to_string(getpid()) + "/task/" + std::to_string(gettid());
    EXPECT_EQ(runCommand("grep -qw $$ " + tasks + "/children"), 0);
}

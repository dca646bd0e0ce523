// Tools of the host that run when the call that needs them is ended; real ones.

#include "EndedCommand.h"

#include "host/CommandLines.h"

#include <gmock/gmock.h>

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

#include "host/Limited.h"
#include "host/Commands.h"
#include "host/Interruption.h"
#include "localdisk/WriteWithin.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

using namespace ovra::tessel;
using std::chrono::seconds;

namespace {

/** Holds threads until it is opened; outlives whoever waits. */
struct Gate
{
    std::mutex mutex;
    std::condition_variable opened;
    bool isOpen = false;

    void wait()
    {
        std::unique_lock<std::mutex> lock(mutex);
        opened.wait(lock, [&] { return isOpen; });
    }
    void open()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        isOpen = true;
        opened.notify_all();
    }
};

} // namespace

TEST(AStepWithALimit, GivesItsResult)
{
    EXPECT_EQ(within<int>(seconds(60), [] { return 7; }), 7);
}

TEST(AStepWithALimit, TakesNoSignalOfTheProgram)
{
    const auto takes = [](int signal) {
        return within<bool>(seconds(60), [signal] {
            sigset_t blocked;
            pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
            return sigismember(&blocked, signal) == 0;
        });
    };
    EXPECT_EQ(takes(SIGTERM), false);
    EXPECT_EQ(takes(SIGCHLD), false);
    sigset_t own;
    pthread_sigmask(SIG_BLOCK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGTERM), 0);
}

TEST(AStepWithALimit, IsLeftToItselfWhenItHangs)
{
    const auto gate = std::make_shared<Gate>();
    EXPECT_EQ(within<int>(seconds(0),
                          [gate] {
                              gate->wait();
                              return 7;
                          }),
              std::nullopt);
    gate->open();
}

TEST(AStepWithALimit, ThrowsWhatItThrew)
{
    EXPECT_THROW(endsWithin(seconds(60), [] { throw std::runtime_error("no"); }), std::runtime_error);
}

TEST(AStepWithALimit, LeavesTheOthersDoneWhenOneHangs)
{
    const auto gate = std::make_shared<Gate>();
    const auto done = std::make_shared<std::atomic<int>>(0);
    std::vector<std::function<void()>> steps(20, [done] { ++*done; });
    steps.front() = [gate] { gate->wait(); };
    doWithin(seconds(1), steps);
    EXPECT_EQ(*done, 19);
    gate->open();
}

TEST(AStepWithALimit, LeavesTheOthersDoneWhenMoreHangThanAreBegunAtOnce)
{
    const auto gate = std::make_shared<Gate>();
    const auto done = std::make_shared<std::atomic<int>>(0);
    std::vector<std::function<void()>> steps(20, [gate] { gate->wait(); });
    steps.emplace_back([done, gate] {
        ++*done;
        gate->open();
    });
    doWithin(seconds(60), steps);
    EXPECT_EQ(*done, 1);
}

TEST(AStepWithALimit, BeginsNothingMoreWhenTheTimeIsUp)
{
    const auto gate = std::make_shared<Gate>();
    const auto begun = std::make_shared<std::atomic<int>>(0);
    std::vector<std::function<void()>> steps(100, [begun, gate] {
        ++*begun;
        gate->wait();
    });
    doWithin(seconds(0), steps);
    EXPECT_LE(*begun, 8);
    gate->open();
}

TEST(ACommandWithALimit, TellsHowItEnded)
{
    EXPECT_EQ(runWithin(seconds(60), "exit 3"), 3 << 8);
}

TEST(ACommandWithALimit, TellsThatItWasEndedFromTheKeyboard)
{
    EXPECT_THROW(runWithin(seconds(60), "kill -INT $$"), Interruption);
}

TEST(ACommandWithALimit, CanBeEndedBySignals)
{
    setenv("PATH", "/usr/bin:/bin", 1); // other tests take it away
    // With all signals blocked, as on the thread that waits for it, timeout could not end it.
    EXPECT_EQ(runWithin(seconds(60), "timeout 0.1 sleep 60"), 124 << 8);
}

TEST(AWriteWithALimit, TellsWhyItFailed)
{
    EXPECT_EQ(writeWithin(seconds(60), "/nonexistent/delete", "1"),
              "/nonexistent/delete: No such file or directory");
    EXPECT_EQ(writeWithin(seconds(60), "/dev/full", "1"), "/dev/full: No space left on device");
    EXPECT_EQ(writeWithin(seconds(60), "/dev/null", "1"), "");
}

TEST(AWriteWithALimit, TellsWhatDoesNotAnswer)
{
    const std::string file = "/tmp/answers-not-" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); // keeps who opens it for writing until somebody reads
    EXPECT_EQ(writeWithin(seconds(1), file, "1"), file + " does not answer");
    const int reader = open(file.c_str(), O_RDWR | O_CLOEXEC);
    char written = '\0';
    EXPECT_EQ(read(reader, &written, 1), 1);
    EXPECT_EQ(written, '1');
    close(reader);
    unlink(file.c_str());
}

#include "host/CommandLines.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace ovra::tessel;

/** The real commands of a process that wants to know nothing of its children. */
class IgnoredChildren : public testing::Test
{
protected:
    IgnoredChildren() { std::signal(SIGCHLD, SIG_IGN); }
    ~IgnoredChildren() override { std::signal(SIGCHLD, SIG_DFL); }

    static auto handler()
    {
        struct sigaction action = {};
        sigaction(SIGCHLD, nullptr, &action);
        return action.sa_handler;
    }
};

TEST_F(IgnoredChildren, TellHowTheirCommandsEndedAllTheSame)
{
    EXPECT_EQ(WEXITSTATUS(runCommand("exit 3")), 3);
    EXPECT_EQ(runCommand("true"), 0);
    EXPECT_EQ(handler(), SIG_IGN);
}

TEST_F(IgnoredChildren, TellWhetherAListingIsWhole)
{
    for (const char* const command : {"printf 'one\\ntwo'", "printf 'one\\ntwo'; exit 1"}) {
        CommandLines listing(command);
        std::string line;
        EXPECT_TRUE(listing.next(line));
        EXPECT_TRUE(listing.next(line));
        EXPECT_EQ(line, std::string(command).find("exit") == std::string::npos ? "two" : "");
        EXPECT_FALSE(listing.next(line));
    }
    EXPECT_EQ(handler(), SIG_IGN);
}

TEST_F(IgnoredChildren, ThatEndMeanwhileAreCollected)
{
    {
        const ChildStatus kept;
        const pid_t child = fork();
        if (child == 0) {
            _exit(0);
        }
        siginfo_t ended = {};
        ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT), 0);
    }
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(IgnoredChildren, StayAsTheyAreWhenTheApplicationChoosesAnewMeanwhile)
{
    const auto own = [](int) {};
    {
        const ChildStatus kept;
        EXPECT_EQ(handler(), SIG_DFL);
        std::signal(SIGCHLD, own);
    }
    EXPECT_EQ(handler(), static_cast<void (*)(int)>(own));
}

TEST_F(IgnoredChildren, AreKeptUntilTheLastCommandHasEnded)
{
    std::thread other;
    {
        const ChildStatus first;
        other = std::thread([] { EXPECT_EQ(WEXITSTATUS(runCommand("exit 4")), 4); });
        other.join();
        EXPECT_EQ(handler(), SIG_DFL);
    }
    EXPECT_EQ(handler(), SIG_IGN);
}

TEST_F(IgnoredChildren, ByAFlagOfAHandlerAreKeptToo)
{
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_NOCLDWAIT;
    sigaction(SIGCHLD, &action, nullptr);
    EXPECT_EQ(WEXITSTATUS(runCommand("exit 5")), 5);
    struct sigaction after = {};
    sigaction(SIGCHLD, nullptr, &after);
    EXPECT_NE(after.sa_flags & SA_NOCLDWAIT, 0);
}

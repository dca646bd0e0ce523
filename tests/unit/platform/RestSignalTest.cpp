// A peer that has gone away makes a write fail, and no signal reaches the application for it.

#include <SigpipeGuard.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <sys/socket.h>
#include <unistd.h>

namespace ovra::rest {
namespace {

/** Sends to a peer that is not there any more; the error. */
int errorOfABrokenPipe()
{
    int ends[2] = {-1, -1};
    EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM, 0, ends));
    close(ends[1]);
    const ssize_t written = write(ends[0], "x", 1);
    const int error = errno;
    close(ends[0]);
    return written < 0 ? error : 0;
}

bool isPending()
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, SIGPIPE) == 1;
}

sigset_t maskOfThread()
{
    sigset_t mask;
    pthread_sigmask(SIG_BLOCK, nullptr, &mask);
    return mask;
}

TEST(BrokenPipes, RaiseNoSignalWhereTheyAreGuardedAgainst)
{
    for (int i = 0; i < 2; ++i) { // the first has left nothing behind
        const SigpipeGuard guard;
        EXPECT_EQ(EPIPE, errorOfABrokenPipe());
        EXPECT_TRUE(isPending());
    }
    EXPECT_FALSE(isPending());
    const sigset_t mask = maskOfThread();
    EXPECT_EQ(0, sigismember(&mask, SIGPIPE));
}

TEST(BrokenPipes, LeaveTheApplicationASignalThatItHoldsBack)
{
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &pipe, &before);
    {
        const SigpipeGuard guard;
        EXPECT_EQ(EPIPE, errorOfABrokenPipe());
    }
    EXPECT_FALSE(isPending()) << "it is not the application's";
    EXPECT_EQ(0, pthread_kill(pthread_self(), SIGPIPE));
    {
        const SigpipeGuard guard;
        EXPECT_EQ(EPIPE, errorOfABrokenPipe());
    }
    EXPECT_TRUE(isPending());
    const timespec atOnce = {};
    EXPECT_EQ(SIGPIPE, sigtimedwait(&pipe, nullptr, &atOnce));
    const sigset_t mask = maskOfThread();
    EXPECT_EQ(1, sigismember(&mask, SIGPIPE));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

} // namespace
} // namespace ovra::rest

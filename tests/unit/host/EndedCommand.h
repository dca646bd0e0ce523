#ifndef HOST_ENDEDCOMMAND_H
#define HOST_ENDEDCOMMAND_H

#include "session/CallsAtWork.h"

#include <gtest/gtest.h>
#include <tessel/Calls.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <functional>
#include <poll.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

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
        const auto patience = Clock::now() + std::chrono::milliseconds(PATIENCE_MS);
        siginfo_t child = {};
        while (waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == 0 && Clock::now() < patience) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == -1 && errno == ECHILD;
    }

    /** Runs it, and ends the call when it is there; how long it went on then. */
    std::chrono::milliseconds cancelled(const std::function<void()>& run) const
    {
        const ovra::tessel::Cancellation cancellation;
        Clock::time_point at;
        std::thread other([&] {
            waitForWord();
            if (beforeItEnds) {
                beforeItEnds();
            }
            at = Clock::now();
            cancellation.cancel();
        });
        ovra::tessel::FailureKind why = ovra::tessel::FailureKind::NONE;
        {
            const ovra::tessel::CallLimit limit(cancellation);
            try {
                run();
            } catch (const ovra::tessel::CallEnded& ended) {
                why = ended.why;
            } catch (const std::exception& problem) {
                ADD_FAILURE() << problem.what();
            }
        }
        const Clock::time_point end = Clock::now();
        other.join();
        EXPECT_EQ(why, ovra::tessel::FailureKind::CANCELLED);
        return std::chrono::duration_cast<std::chrono::milliseconds>(end - at);
    }

    std::function<void()> beforeItEnds; ///< is done when the command is there

    static constexpr int TOLD_BY = 9; ///< a descriptor that a shell can name

private:
    using Clock = std::chrono::steady_clock;
    static constexpr int PATIENCE_MS = 20000;

    int m_read = -1;
};

#endif

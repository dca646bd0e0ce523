#ifndef OVRA_REST_SIGPIPEGUARD_H
#define OVRA_REST_SIGPIPEGUARD_H

#include <csignal>

namespace ovra::rest {

/**
 * Keeps SIGPIPE from the calling thread while a connection is used: told to leave signals alone, libcurl does
 * not, and a peer that hung up must not end the application.
 */
class SigpipeGuard
{
public:
    SigpipeGuard()
    {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
        sigset_t pending;
        // Only a signal that was blocked before can wait already.
        m_wasPending = sigismember(&m_before, SIGPIPE) == 1 && sigpending(&pending) == 0 &&
                       sigismember(&pending, SIGPIPE) == 1;
    }

    ~SigpipeGuard()
    {
        const timespec atOnce = {};
        if (!m_wasPending) {
            while (sigtimedwait(&m_pipe, nullptr, &atOnce) == SIGPIPE) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

    SigpipeGuard(const SigpipeGuard&) = delete;
    SigpipeGuard& operator=(const SigpipeGuard&) = delete;

private:
    sigset_t m_pipe;
    sigset_t m_before;
    bool m_wasPending;
};

} // namespace ovra::rest

#endif

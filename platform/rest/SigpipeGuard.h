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
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
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

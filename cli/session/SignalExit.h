#ifndef SESSION_SIGNALEXIT_H
#define SESSION_SIGNALEXIT_H

#include <functional>
#include <thread>

namespace tesselctl {

/**
 * While it lives, SIGINT, SIGTERM and SIGHUP do some last work before they end the process as they would have
 * without it; a second one ends it at once. What was ignored stays ignored. One at a time.
 */
class SignalExit
{
public:
    /** @param lastWork is done on a thread of its own, beside whatever the process is doing. */
    explicit SignalExit(std::function<void()> lastWork);
    ~SignalExit();
    SignalExit(const SignalExit&) = delete;
    SignalExit& operator=(const SignalExit&) = delete;

private:
    std::function<void()> m_lastWork;
    std::thread m_thread;
};

} // namespace tesselctl

#endif

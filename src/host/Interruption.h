#ifndef HOST_INTERRUPTION_H
#define HOST_INTERRUPTION_H

#include "session/CallsAtWork.h"

namespace ovra::tessel {

/** Thrown when a command of the host was ended from the keyboard: the steps after it are not to be run. */
struct Interruption
{
    int signal; ///< SIGINT or SIGQUIT
};

/** Throws if the status of a command that has ended shows one of these signals. */
void throwIfInterrupted(int status);

/** Sets what lastScanSignal() returns on this thread. */
void setLastScanSignal(int signal);

/** Whether the last scan of this thread was ended with the call that it is part of. */
bool isScanEnded() noexcept;
void setScanEnded(bool isEnded);

/**
 * Runs the steps of a scan; when one is interrupted, or the call ended, no more of them are run, and the
 * result is empty.
 */
template <class Steps>
auto untilInterrupted(Steps steps) -> decltype(steps())
{
    try {
        return steps();
    } catch (const Interruption& interruption) {
        setLastScanSignal(interruption.signal);
    } catch (const CallEnded&) {
        setScanEnded(true);
    }
    return decltype(steps())();
}

} // namespace ovra::tessel

#endif

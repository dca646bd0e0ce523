#ifndef SESSION_CALLSATWORK_H
#define SESSION_CALLSATWORK_H

#include <ovra/rest/RestCall.h>
#include <tessel/Calls.h>
#include <tessel/Failure.h>

#include <memory>

namespace ovra::tessel {

/** The point in time that far away; one that the clock cannot hold is none. */
std::chrono::steady_clock::time_point endOf(std::chrono::milliseconds whole);

/** Puts a limit upon the calls of this thread. */
void beginLimit(RestCall& limit);
/** Takes the last one away. */
void endLimit(const RestCall& limit) noexcept;

/** Whether the calls of this thread may be ended while they wait. */
bool isLimited() noexcept;

/** Why the call at work is to end: NONE, CANCELLED or TIMED_OUT. */
FailureKind whyToEnd() noexcept;

/** How often a wait that cannot be ended from outside is to look. */
constexpr long LOOK_MILLISECONDS = 20;

/** Whether one of these can be read, within milliseconds. */
bool isCancelledWithin(const RestCall* limit, int milliseconds) noexcept;

/** A pause, which ends when the call does. */
void pauseFor(unsigned int microseconds);

/**
 * Thrown on the side of this host, where what comes next is not to be done. None of the SDK's exceptions, so
 * that nothing goes on behind it: who began the steps makes one of it.
 */
struct CallEnded
{
    FailureKind why; ///< CANCELLED or TIMED_OUT
};

/** Throws CallEnded when the call at work is to end. */
void throwIfEnded();

/** A pause; throws CallEnded when the call ends in it. */
void pauseOrEnd(unsigned int microseconds);
/** The same by sleep() where nothing limits the call. */
void sleepOrEnd(unsigned int seconds);

} // namespace ovra::tessel

#endif

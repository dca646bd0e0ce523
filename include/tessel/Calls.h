#ifndef TESSEL_CALLS_H
#define TESSEL_CALLS_H

/** @file
 * Calls that end: in time, when another thread says so, and with a session that has ended meanwhile. All of
 * it is off unless it is asked for. */

#include <tessel/DeviceManager.h>
#include <tessel/Export.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace ovra {
namespace tessel {

/**
 * Ends calls of other threads. Copies are one and the same. What it holds for ends within some milliseconds,
 * also where nobody answers, in a wait for the lock of the scans, for a disk or for a map, as a request that
 * failed: FailureKind::CANCELLED. A tool of the host that runs is killed, with all that it has started; while
 * a call has a limit such a tool is run by a thread of its own. Not ended are what the kernel is asked by the
 * scans and removals of CDiskScannerHandler, an INQUIRY or a write back: the step behind it is not done.
 *
 * A request that was sent may have been carried out (Failure::mayBeDone). What a call would do after a
 * failure, an attach for one, does not happen either.
 */
class TESSEL_API Cancellation
{
public:
    /** Not cancelled. @throws OvraAPIException when the process can have no more descriptors. */
    Cancellation();
    /** Cancels what it holds for, from now on, until reset. Any thread; a signal handler too. */
    void cancel() const noexcept;
    /** What it holds for may go on. */
    void reset() const noexcept;
    /** @return whether it was cancelled. */
    bool isCancelled() const noexcept;

private:
    friend class CallLimit;
    friend TESSEL_API void setCallLimit(CDeviceManager& manager, std::chrono::milliseconds each,
                                        const Cancellation& cancellation);
    struct Event;
    std::shared_ptr<Event> m_event;
};

/**
 * Limits all calls of this thread, of whatever array, until it goes out of scope; to be destroyed by the
 * thread that made it, in the reverse order. Of several the earliest end counts, and every cancellation.
 *
 * A logout in it ends as other calls do, and leaves the session to its idle time-out: log out behind it.
 */
class TESSEL_API CallLimit
{
public:
    /** @param whole of all calls together, from now on; what is not over by then fails as timed out. */
    explicit CallLimit(std::chrono::milliseconds whole);
    /** @param cancellation ends the calls. */
    explicit CallLimit(const Cancellation& cancellation);
    /** Both. @param cancellation,whole as above. */
    CallLimit(const Cancellation& cancellation, std::chrono::milliseconds whole);
    /** The calls of this thread are limited as before. */
    ~CallLimit();
    CallLimit(const CallLimit&) = delete;
    CallLimit& operator=(const CallLimit&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/**
 * Limits each operation of a device manager, an attach, LocalDisk::attach or tidy as a whole; goes with the
 * device manager. Not while a call of it is at work.
 * @param manager of the array.
 * @param each how long an operation may take; 0: no limit.
 */
TESSEL_API void setCallLimit(CDeviceManager& manager, std::chrono::milliseconds each);
/** The same. @param manager,each as above. @param cancellation ends the operations of the device manager. */
TESSEL_API void setCallLimit(CDeviceManager& manager, std::chrono::milliseconds each,
                             const Cancellation& cancellation);

/** Who logs in. */
struct Credentials
{
    std::string userName;            ///< as in CDeviceManager::loginDevice
    std::string password;            ///< as there; overwritten when the login is done
    USERTYPE scope = USERTYPE_LOCAL; ///< as there
};

/** Supplies credentials. @return false when there are none; must not use the device manager. */
using CredentialsSource = std::function<bool(Credentials& credentials)>;

/**
 * Opens a session that the array has ended again. An operation whose request the array refuses then asks by a
 * keep-alive whether the session is over; if so it logs in with what the source gives, at the same address,
 * and repeats the request once if it was a read. Any other request is not sent again, and its operation fails
 * as it would have; the next one has a session. Credentials that the array refuses are not tried again before
 * a login that succeeds, or the next call of this: the account might be locked.
 *
 * Goes with the device manager. The source is called by the thread of the operation, under no lock.
 * @param manager of the array.
 * @param source where the credentials come from; empty: sessions stay ended, as they do without this call.
 */
TESSEL_API void setCredentials(CDeviceManager& manager, CredentialsSource source);

} // namespace tessel
} // namespace ovra

#endif

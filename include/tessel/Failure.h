#ifndef TESSEL_FAILURE_H
#define TESSEL_FAILURE_H

/** @file
 * Why something failed: beside the exceptions, and for the calls that only return false. */

#include <tessel/Exception.h>
#include <tessel/Export.h>

#include <string>

namespace ovra {
namespace tessel {

/** What kind of failure it was. Values may be added. */
enum class FailureKind : int
{
    NONE = 0,          ///< there was none
    ARGUMENT,          ///< an argument was refused, or cannot be sent; nothing was sent
    NOT_LOGGED_IN,     ///< the device manager has no session; nothing was sent
    NOT_REACHABLE,     ///< no connection to the array, or it ended before the answer
    NOT_TRUSTED,       ///< what answered did not prove that it is the array; it got no request
    TIMED_OUT,         ///< no answer in time
    UNREADABLE_ANSWER, ///< something answered, and not as the array's management interface does
    REFUSED,           ///< the array answered with an error: code and description
    HOST,              ///< on this host: a disk, the lock of the scans, a lack of memory
    CANCELLED          ///< by a Cancellation
};

/** The reason within the kind, as far as it is known. Values may be added. */
enum class FailureReason : int
{
    OTHER = 0,                 ///< no other value says it; Failure::transport and Failure::message do
    NOTHING_LISTENS,           ///< NOT_REACHABLE: the port is closed
    NO_ROUTE,                  ///< NOT_REACHABLE: no way to the address
    NO_TLS,                    ///< NOT_REACHABLE: what listens does not speak TLS 1.2 or later; HTTP, say
    CONNECTION_ENDED,          ///< NOT_REACHABLE: the other end closed the connection
    CERTIFICATE_EXPIRED,       ///< NOT_TRUSTED: its time is over
    CERTIFICATE_NOT_YET_VALID, ///< NOT_TRUSTED: its time has not begun
    CERTIFICATE_NAME,          ///< NOT_TRUSTED: it is not for the address that was asked
    CERTIFICATE_AUTHORITY,     ///< NOT_TRUSTED: no authority that is trusted here has signed it
    CERTIFICATE_PIN,           ///< NOT_TRUSTED: the public key is not the pinned one
    CA_FILE,                   ///< NOT_TRUSTED: the CA file is missing, or holds no certificate
    SILENCE,                   ///< TIMED_OUT: nobody answered
    TOO_LARGE,                 ///< UNREADABLE_ANSWER: above a limit
    NOT_READY                  ///< REFUSED: an object is not ready yet
};

/** The codes of the array's refusals that the library knows; all others are one array's own. */
enum ArrayCode : int
{
    ARRAY_ALREADY_IN_LUN_GROUP = 1077936862,        ///< a LUN or snapshot is in the LUN group already
    ARRAY_ALREADY_MEMBER_OF_LUN_GROUP = 1077948997, ///< the same
    ARRAY_NOT_IN_LUN_GROUP = 1077948996,            ///< a LUN or snapshot is not in the LUN group
    ARRAY_ALREADY_IN_HOST_GROUP = 1077937501,       ///< a host is in the host group already
    ARRAY_NOT_READY = 1077949006,                   ///< try again later; more is not recorded of it
    ARRAY_LUN_GROUP_NOT_READY = 1077949001          ///< the same, of a LUN group
};

/** Why a call failed. Texts are UTF-8, cut where they are longer than told; no secrets are in them. */
struct Failure
{
    FailureKind kind = FailureKind::NONE;        ///< what kind of failure it was
    FailureReason reason = FailureReason::OTHER; ///< the reason within the kind
    int result = 0; ///< as in the interface log: 0, 1, libcurl's code, 10001 to 10005, the array's code
    int code = 0;   ///< REFUSED: the array's code; else 0
    std::string description; ///< REFUSED: the array's words, at most 1023 bytes
    std::string transport; ///< why no answer came, in the words of the transport, at most 255 bytes; or empty
    std::string operation; ///< which failed: "getLun", "loginDevice"; the innermost one
    std::string message;   ///< the line of the run log and of the exception, at most 1535 bytes
    /** The same call, unchanged, may succeed later. Of a change see mayBeDone first. */
    bool canTryAgain = false;
    /** A request was sent, and no answer came that can be read: the array may have carried it out. */
    bool mayBeDone = false;

    /** @return whether there was one. */
    explicit operator bool() const { return kind != FailureKind::NONE; }
};

/**
 * Why the last call of this thread failed. Every operation of the handlers and of the session, login among
 * them, LocalDisk, HostTransaction, ensureVisible, ensureHidden and tidy begin anew: one that succeeds leaves
 * no failure behind. One that returns though a step of it failed (adding to a group, which only warns; a scan
 * that finds nothing) leaves that failure. Inside of one call the last failure counts.
 * @return a copy; kind NONE when there was no failure. Any thread; each has its own.
 */
TESSEL_API Failure lastFailure();

/**
 * Why an operation threw, though others of this thread may have succeeded since.
 * @param thrown caught on this thread.
 * @return lastFailure() where it tells of that exception; else what the exception itself tells.
 */
TESSEL_API Failure failureOf(const OvraAPIException& thrown);

/** Forgets the failure of this thread. */
TESSEL_API void clearFailure() noexcept;

} // namespace tessel
} // namespace ovra

#endif

#ifndef TESSEL_OBSERVER_H
#define TESSEL_OBSERVER_H

/** @file
 * Who did what to which object, with what result: told to whoever asks for it. */

#include <tessel/Export.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace ovra {
namespace tessel {

/** An object that a call names. */
struct ObservedObject
{
    std::string kind; ///< lun, snapshot, lungroup, host, hostgroup, mappingview, storagepool, fcport ...
    std::string id;   ///< its ID on the array; empty where it is to be made and was not
    std::string name; ///< its name, where the call gives one
};

/** An operation that has ended. No password, token, cookie or CHAP secret, and no text of the array's. */
struct OperationEvent
{
    std::string operation; ///< getLun, ensureVisible, LocalDisk::attach ...
    std::string within; ///< the call of the application that it is a step of; empty: it is that call itself
    std::string array;  ///< address and port, "192.0.2.7:8088"; empty without a session
    std::string user;   ///< who has logged in; empty for a session that was adopted
    std::vector<ObservedObject> objects; ///< those that the arguments name, and those that it found or made
    std::string initiator;               ///< name or port WWN, where the call names one; else empty
    /** Asked the array to change something, or changed the disks of this host; of the calls that show and
     * hide, also when there was nothing to do. */
    bool isChange = false;
    /** Whether it was done: false also where the operation itself tells no failure of the array's. */
    bool isDone = false;
    int code = 0;           ///< 0; 1 for an argument; the array's code; a number above 100 for no answer
    std::string what;       ///< why it was not done
    std::string device;     ///< of LocalDisk, and of a scan: what was found, /dev/sdc
    double seconds = 0;     ///< how long it took
    double lockSeconds = 0; ///< of these, waiting for the rescan lock of the host
    std::chrono::system_clock::time_point start; ///< when it began
    int process = 0;                             ///< of the caller
    int thread = 0;                              ///< as the kernel numbers it
};

/** A step on the disks of this host. */
struct HostEvent
{
    /** What was done. */
    enum Step
    {
        SCANNED, ///< the SCSI hosts were asked for new disks
        FOUND,   ///< a device was found that is the object
        RENEWED, ///< a device that stood under the names of another disk was removed and found anew
        REMOVED, ///< a device was removed
        REFUSED  ///< a device was not removed, or not taken for the object
    };
    Step step;                ///< what was done
    std::string device;       ///< /dev/sdc; empty where there is none
    std::string what;         ///< why, or how, for a person; may be empty
    double seconds = 0;       ///< how long it took, of a scan
    OperationEvent operation; ///< the call that it is a step of, as far as it had come
};

/**
 * Is told of every operation that ends, and of the steps on this host's disks.
 *
 * Called by the thread that made the call, before that returns, and never while the SDK holds a lock: what
 * happens under the rescan lock is told when it was given back. Several threads call at once. What an
 * observer throws is dropped, and told in the run log. A slow one delays its caller, and nobody else. What it
 * does by the SDK itself is not told to anybody.
 */
class TESSEL_API Observer
{
public:
    virtual ~Observer();
    /**
     * An operation has ended; the steps of a call come before the call.
     * @param event what is known of it; lives as long as the call.
     */
    virtual void operationEnded(const OperationEvent& event);
    /**
     * Something was done to the disks of this host.
     * @param event what is known of it; lives as long as the call.
     */
    virtual void hostStep(const HostEvent& event);
};

/**
 * From now on the observer is told of every call of this process, on every array. Thread-safe.
 * @param observer nothing is done when it is null, or there already.
 */
TESSEL_API void addObserver(const std::shared_ptr<Observer>& observer);

/**
 * The observer is told of nothing that ends after this. A call to it that another thread has begun goes on;
 * the observer lives until it is over. Thread-safe, also out of the observer itself.
 * @param observer nothing is done when it is not there.
 */
TESSEL_API void removeObserver(const std::shared_ptr<Observer>& observer);

/** @param step a step. @return its name: scanned, found, renewed, removed, refused. */
TESSEL_API const char* nameOf(HostEvent::Step step);

} // namespace tessel
} // namespace ovra

#endif

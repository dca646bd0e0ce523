#ifndef TESSEL_HOSTTRANSACTION_H
#define TESSEL_HOSTTRANSACTION_H

/** @file
 * Several steps on this host's disks, between which nobody's scan comes. */

#include <tessel/Export.h>

namespace ovra {
namespace tessel {

/**
 * Holds the rescan lock of this host, which the scans of CDiskScannerHandler and LocalDisk take too, until it
 * goes out of scope: a disk that is removed and then hidden by the array cannot be brought back by a scan in
 * between. LocalDisk has one of its own; a program needs it only around steps that it does itself.
 *
 * While a thread has one, another one of it, and everything in it that takes the lock (the two scans after
 * an attach, LocalDisk), fails at once and says so: they would wait for themselves. Other threads and
 * processes wait. The kernel gives the lock back when the process dies.
 *
 * To be destroyed by the thread that made it.
 */
class TESSEL_API HostTransaction
{
public:
    /**
     * Waits for the lock.
     * @param seconds at most that long; 0: only looks whether it is free. A rescan of CDiskScannerHandler may
     * hold it for some minutes, 25 at most.
     * @throws OvraAPIException when this thread has one already, when the time is up (with the process that
     * holds the lock), or when there can be no lock.
     */
    explicit HostTransaction(unsigned seconds = 1800);
    /** Gives the lock back. */
    ~HostTransaction();
    HostTransaction(const HostTransaction&) = delete;
    HostTransaction& operator=(const HostTransaction&) = delete;
};

} // namespace tessel
} // namespace ovra

#endif

#ifndef TESSEL_DISKSCANNER_H
#define TESSEL_DISKSCANNER_H

#include <tessel/Handler.h>

#include <string>

/**
 * Finds the block device of this host that carries a LUN or snapshot, and removes it again;
 * CDeviceManager::getHandler(DISKSCANNER_HANDLER).
 *
 * Needs the rights to write sysfs and to send SCSI commands (root), and the host tools lsscsi, multipath and
 * rescan-scsi-bus.sh. Failures are logged and give an empty path; only an exception of the LUN or snapshot
 * handler that reads the object's WWN passes through.
 *
 * Scans of all processes and threads of a host run one after the other, under the System V semaphore with the
 * key 1235. After its rescan a scan waits up to 1500 s until lsscsi lists no temporary device of the Korvex
 * product any more; those that it lists appear on the standard output of the process.
 *
 * Hazard: rescan-scsi-bus.sh of sg3-utils 1.46 removes healthy disks when it is run with -r. Where this fault
 * is found, the rescan runs without -r and says so in the run log; install sg3-utils 1.48 or later.
 */
class TESSEL_API CDiskScannerHandler : public CHandler
{
public:
    /**
     * Rescans the SCSI buses and finds the LUN's device. Waits without limit for a rescan of another process.
     * @param lunID ID of the LUN; not changed.
     * @return its path, of the form /dev/disk/by-id/../../sdc; empty when it was not found.
     */
    virtual std::string scanLunAfterAttach(std::string& lunID) = 0;

    /**
     * The same for a snapshot; shares a scan that another thread of this process is running.
     * @param snapshotID ID of the snapshot; not changed.
     * @return as scanLunAfterAttach.
     */
    virtual std::string scanSnapshotAfterAttach(std::string& snapshotID) = 0;

    /**
     * Removes the SCSI devices that carry the LUN, at most five rounds. To be called before the LUN is
     * detached, with its file systems unmounted: devices in use are named in the run log and removed all the
     * same. Takes no lock.
     * @param lunID ID of the LUN; not changed.
     */
    virtual void scanLunBeforeDetach(std::string& lunID) = 0;

    /**
     * The same for a snapshot.
     * @param snapshotID ID of the snapshot; not changed.
     */
    virtual void scanSnapshotBeforeDetach(std::string& snapshotID) = 0;
};

#endif

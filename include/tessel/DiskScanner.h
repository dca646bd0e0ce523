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
 * product any more.
 *
 * Output: the host's tools inherit the standard output and error of the process. On the output appear the
 * lines of lsscsi that show temporary devices, and what kxRescan prints; on the error what ls, lsscsi,
 * multipath, grep and the shell complain of. A program whose own output is read by others keeps it out by
 * having another descriptor 1 and 2 during the four operations (dup2), as the tools' are those of the
 * process.
 *
 * Signals: while a tool runs, a process that ignores SIGCHLD (or has SA_NOCLDWAIT) has it at its default, or
 * nobody could tell how the tool ended; children that end meanwhile are collected afterwards. A program that
 * waits for children that it did not start takes the tools' ends away: what is not known then is taken for
 * unsafe, and nothing is removed. As with system(), SIGINT and SIGQUIT are ignored and SIGCHLD is held back
 * while a tool runs; see lastScanSignal().
 *
 * Hazards: rescan-scsi-bus.sh of sg3-utils 1.46 and 1.47 removes healthy disks when it is run with -r, and
 * any does so with disks whose transport is down for a moment. Where this fault is found, or while a disk of
 * this host is not running, the rescan runs without -r and says so in the run log; install sg3-utils 1.48 or
 * later.
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
     * Removes the SCSI devices that carry the LUN, at most five rounds; says in the run log when there are
     * none. To be called before the LUN is detached, with its file systems unmounted: devices in use are
     * named in the run log and removed all the same, after their data has been written back, that of the file
     * systems and of the device-mapper and RAID devices on them too. Takes no lock.
     * @param lunID ID of the LUN; not changed.
     */
    virtual void scanLunBeforeDetach(std::string& lunID) = 0;

    /**
     * The same for a snapshot.
     * @param snapshotID ID of the snapshot; not changed.
     */
    virtual void scanSnapshotBeforeDetach(std::string& snapshotID) = 0;
};

namespace ovra {
namespace tessel {

/**
 * The signal, SIGINT or SIGQUIT, that ended a tool of the host during the last of the four operations above
 * on this thread; 0 when none did. The operation then ended early, with an empty path or with devices left,
 * and had given the lock back; the process, which ignores these signals while it waits for a tool, has not
 * seen the signal. A program that is to end by Ctrl-C looks here after each operation. Never fails; any
 * thread.
 */
TESSEL_API int lastScanSignal() noexcept;

} // namespace tessel
} // namespace ovra

#endif

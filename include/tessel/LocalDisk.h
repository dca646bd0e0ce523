#ifndef TESSEL_LOCALDISK_H
#define TESSEL_LOCALDISK_H

/** @file
 * A LUN or snapshot as a disk of this host: shown, found, proved, and taken away again. */

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ovra {
namespace tessel {

/** How a local disk is attached and released; every value may be left as it is. */
struct LocalDiskOptions
{
    AccessOptions access;        ///< of the requests that show and hide
    unsigned lockSeconds = 1800; ///< the longest wait for the scans of others, as in HostTransaction
    unsigned findSeconds = 30;   ///< for the kernel to find the disk
    unsigned mapSeconds = 20;    ///< for multipathd to make the map of the disk's paths
    unsigned stepSeconds = 10;   ///< for any one answer of a disk, and for each tool that is run
    unsigned flushSeconds = 600; ///< for data not yet written to reach the disk, in a release
};

/** One way by which a local disk is reached. */
struct DiskPath
{
    std::string device;  ///< /dev/sdc
    std::string address; ///< 1:0:0:2: host, channel, target, LUN number
    std::string state;   ///< as the kernel says: running, blocked, offline, transport-offline ...
};

/**
 * A LUN or snapshot as a disk of this host. Every path that is handed out has answered, just before, that it
 * is that object: by its WWN and by the array's ID of it; and all paths have the size that the array tells.
 * Where multipath is at work it is the map that is handed out, and a map with a path of another disk never
 * is.
 *
 * @code
 * LocalDisk disk = LocalDisk::attach(array, StorageObject::lun("7"), HostInitiator::iscsi(name));
 * copyFrom(disk.path(), disk.size());
 * disk.release();
 * @endcode
 *
 * Only the SCSI hosts by which this host reaches the array are scanned, and no disk that the kernel knows to
 * be dead is asked anything. All steps are bounded in time. What fails throws an OvraAPIException that names
 * the step, what stands, and what the next call does: the same call again goes on from there, in another
 * process too. Needs the rights to write sysfs and to send SCSI commands (root). Refuses to work beside the
 * Korvex product, which manages the disks of its host itself.
 *
 * One thread at a time uses an object; several objects are independent of each other, those of one device
 * manager excepted. The device manager outlives it, logged in. Not to be used by a thread that has a
 * HostTransaction.
 */
class TESSEL_API LocalDisk
{
public:
    /**
     * Shows the object to this host (as ensureVisible), scans, and proves what it found. Where all that is
     * done already nothing is changed, and nothing is scanned.
     * @param manager logged in; outlives the result.
     * @param volume the LUN or snapshot.
     * @param host an initiator of this host: the name of an iSCSI session, or the WWN of an FC port, that is
     * there.
     * @param options see there.
     * @return the disk; its destructor releases it.
     * @throws OvraAPIException when there is no such disk that can be proved; whether the object is visible
     * to the host then stands in the message.
     */
    static LocalDisk attach(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                            const LocalDiskOptions& options = LocalDiskOptions());
    /** The same. @param array,volume,host,options as above. @return as above. */
    static LocalDisk attach(const Array& array, const StorageObject& volume, const HostInitiator& host,
                            const LocalDiskOptions& options = LocalDiskOptions())
    {
        return attach(array.manager(), volume, host, options);
    }

    /**
     * Takes over a disk that is attached already, by another process say. Shows nothing, scans nothing.
     * @param manager,volume,host,options as in attach.
     * @return the disk; its destructor releases it.
     * @throws OvraAPIException when there is none that can be proved.
     */
    static LocalDisk find(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                          const LocalDiskOptions& options = LocalDiskOptions());
    /** The same. @param array,volume,host,options as above. @return as above. */
    static LocalDisk find(const Array& array, const StorageObject& volume, const HostInitiator& host,
                          const LocalDiskOptions& options = LocalDiskOptions())
    {
        return find(array.manager(), volume, host, options);
    }

    /**
     * Takes away what is there of an object, whole or not: for who has no LocalDisk of it, after a crash say.
     * As release() otherwise.
     * @param manager,volume,host,options as in attach.
     * @param evenInUse as in release.
     */
    static void release(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                        const LocalDiskOptions& options = LocalDiskOptions(), bool evenInUse = false);

    /** Takes over a disk. @param other can only be destroyed and assigned to from now on. */
    LocalDisk(LocalDisk&& other) noexcept;
    /**
     * Releases the disk that this has, as the destructor does, and takes one over.
     * @param other as above.
     * @return this.
     */
    LocalDisk& operator=(LocalDisk&& other) noexcept;
    /** Releases the disk unless that is done; what stands in the way stays, and is told in the run log. */
    ~LocalDisk();

    /** @return what is to be opened: /dev/mapper/NAME of the map where there is one, else /dev/sdc. */
    const std::string& path() const;
    /** @return the paths, as the kernel shows them now. @throws OvraAPIException when that cannot be read. */
    std::vector<DiskPath> paths() const;
    /** @return the WWN, as the array tells it: 32 hexadecimal digits. */
    const std::string& wwn() const;
    /** @return bytes, as all paths and the array tell it. */
    std::uint64_t size() const;
    /** @return the object. */
    const StorageObject& volume() const;

    /** Proves the disk anew, as attach does. @throws OvraAPIException when it is not, or no longer, right. */
    void verify() const;

    /**
     * Takes the disk away: writes everything back, removes the map and every path, and hides the object from
     * the host (as ensureHidden), all under the rescan lock; then looks that nothing is left. Done once, it
     * does nothing any more.
     * @param evenInUse removes it though it is in use, after everything was written back; what uses it then
     * fails.
     * @throws OvraAPIException when it is in use (with what uses it; nothing is changed then), or when
     * something stays; call it again.
     */
    void release(bool evenInUse = false);

    /**
     * Takes the size that the object has now on the array over to all paths and the map, after it was grown.
     * @throws OvraAPIException when one of them keeps another size (with its name).
     */
    void refresh();

    /** Leaves the disk attached: the destructor does nothing. For who hands it over to another process. */
    void keep() noexcept;

private:
    struct State;
    explicit LocalDisk(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

/**
 * Proves that a device of this host is a certain LUN or snapshot: it, and every path below it where it is a
 * multipath map, answers with the object's WWN and ID and has its size.
 * @param manager logged in.
 * @param volume the LUN or snapshot.
 * @param device e.g. /dev/sdc, /dev/mapper/mpatha, or a link to one of these.
 * @param options of it, stepSeconds.
 * @throws OvraAPIException when it is not; the message says by what it differs.
 */
TESSEL_API void verifyDisk(CDeviceManager& manager, const StorageObject& volume, const std::string& device,
                           const LocalDiskOptions& options = LocalDiskOptions());

} // namespace tessel
} // namespace ovra

#endif

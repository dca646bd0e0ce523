#ifndef OVRA_DISK_SCSIDISKS_H
#define OVRA_DISK_SCSIDISKS_H

#include "ovra/disk/Names.h"
#include "ovra/disk/Page83.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// SCSI disks and multipath maps as the kernel's /sys shows them. No device is asked anything. The root, where
// one is given, stands before /sys. Unreadable is thrown where it cannot be told what there is.

namespace ovra::disk {

/** A SCSI disk. */
struct ScsiDisk
{
    std::string name;    ///< "sdc"
    std::string address; ///< "1:0:0:2": host, channel, target, LUN number
    std::string state;   ///< "running", "blocked", "offline", "transport-offline" ...
    std::uint64_t bytes = 0;
    bool isReadOnly = false;
    DiskIdentity known; ///< what it said it is when the kernel found it; empty texts: not known
    std::string map;    ///< the multipath node on it, e.g. "dm-3"; empty when there is none

    bool isRunning() const { return state == "running"; }
    std::string host() const { return address.substr(0, address.find(':')); }
    std::string lun() const { return address.substr(address.rfind(':') + 1); }
};

/** One disk of this host; none when there is no such SCSI disk. */
std::optional<ScsiDisk> scsiDisk(const std::string& name, const std::string& root = std::string());

/** What is on some SCSI hosts ("1"), disks and others. Those of other hosts, hundreds perhaps, cost next to
 * nothing. */
std::vector<ScsiAddress> scsiAddressesOf(const std::vector<std::string>& hosts,
                                         const std::string& root = std::string());

/** What the device at an address, "1:0:0:2", said it is when the kernel found it; empty texts: not known. */
DiskIdentity knownAt(const std::string& address, const std::string& root = std::string());

/** The disk at an address; none for what is no disk, and for one without its block device. */
std::optional<ScsiDisk> scsiDiskAt(const std::string& address, const std::string& root = std::string());

/** The disks among what is at some addresses, by name. */
std::vector<ScsiDisk> scsiDisksAt(const std::vector<ScsiAddress>& addresses,
                                  const std::string& root = std::string());

/** The disks on some SCSI hosts ("1"), by name. */
std::vector<ScsiDisk> scsiDisksOf(const std::vector<std::string>& hosts,
                                  const std::string& root = std::string());

/** True while the kernel has found a disk on one of these hosts ("1") that has no block device yet. */
bool hasUnfinishedDisks(const std::vector<std::string>& hosts, const std::string& root = std::string());

/** A multipath map. */
struct MultipathMap
{
    std::string node; ///< "dm-3"
    std::string name; ///< in /dev/mapper
    std::string wwid; ///< "3600a0b80...": the kind of its designator, and the WWN
    std::uint64_t bytes = 0;
    bool isReadOnly = false;
    bool isSuspended = false;
    std::vector<std::string> paths; ///< "sdc"; without those that are removed
};

/** The map that a node is; none for one that is gone, or no multipath map. */
std::optional<MultipathMap> multipathMap(const std::string& node, const std::string& root = std::string());

/** The map of a WWN, with or without paths; none when there is none. */
std::optional<MultipathMap> mapOfWwn(const std::string& wwn, const std::string& root = std::string());

/** True for a node that stands for a partition of a multipath map. */
bool isMapPartition(const std::string& node, const std::string& root = std::string());

} // namespace ovra::disk

#endif

#ifndef LOCALDISK_HOSTDISKS_H
#define LOCALDISK_HOSTDISKS_H

#include "localdisk/ArrayObjects.h"

#include <ovra/disk/ScsiDisks.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tesselctl {

/** A disk of this host that the array shows to it, or once did. */
struct HostDisk
{
    std::string device; ///< its multipath map, where there is one
    std::uint64_t bytes;
    ovra::disk::DiskIdentity identity; ///< as the kernel keeps it; empty texts where it does not
    ArrayObject object;
    std::vector<ovra::disk::ScsiDisk> paths;
    std::vector<std::string> uses; ///< "sdc1 is mounted on /data"
};

/** What was found; and why the uses may not be all. */
struct HostDisks
{
    std::vector<HostDisk> disks;
    std::set<std::string> unknown; ///< "/proc/swaps cannot be read"
};

/** This host's disks of the array, by what the kernel and the array say. No device is asked anything. */
HostDisks disksOfArray(Session& session);

} // namespace tesselctl

#endif

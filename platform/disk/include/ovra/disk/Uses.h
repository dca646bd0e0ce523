#ifndef OVRA_DISK_USES_H
#define OVRA_DISK_USES_H

#include <string>
#include <vector>

namespace ovra::disk {

/** What uses a disk, its partitions, or a device-mapper or RAID node on top of them; a sentence each. */
struct Uses
{
    std::vector<std::string> found;   ///< "sdc1 is mounted on /data", "sdc is held by dm-3 (mpatha)"
    std::vector<std::string> unknown; ///< "/proc/swaps cannot be read": the disk may be in use all the same
    /**
     * A path into each file system that has a number of its own, as btrfs has: the kernel does not find it by
     * the disk, so that flushing the disk does not write it back. None into one that stands on a device which
     * cannot answer as well.
     */
    std::vector<std::string> unreached;
};

/**
 * The uses in every mount namespace of this host. No device is asked anything.
 * @param root stands before /proc and /sys
 */
Uses usesOf(const std::string& disk, const std::string& root = std::string());

/**
 * The same for a disk whose multipath map goes with it: that the map, and what stands for its partitions,
 * hold the disk is no use.
 */
Uses usesBeyondMap(const std::string& disk, const std::string& root = std::string());

} // namespace ovra::disk

#endif

#ifndef OVRA_DISK_NODES_H
#define OVRA_DISK_NODES_H

#include <string>
#include <vector>

// What the kernel's /sys shows of block devices. No device is asked anything. The root, where one is given,
// stands before /sys and /proc.

namespace ovra::disk {

/** A disk, a partition, or a device-mapper or RAID node on top of them. */
struct Node
{
    std::string name;
    std::string folder; ///< its directory in /sys
    std::string number; ///< "8:33"; empty when it is not known
    std::string mapped; ///< the name of a device-mapper node in /dev/mapper; else empty
    std::string below;  ///< the node that this one holds; empty for a disk and a partition
};

/**
 * A disk and all that stands on it: its partitions and what holds them, whatever holds those, and so on.
 * Throws Unreadable where that cannot be told.
 */
std::vector<Node> nodesOn(const std::string& disk, const std::string& root = std::string());

/**
 * False for a device that the kernel knows not to answer: a SCSI disk that is not running, a device-mapper
 * node with only such ones below it, or, unless it is a multipath map, with any such one. Asking one may last
 * for minutes, or for ever. True where it cannot be told: what opens the device next says why.
 */
bool canAnswer(const std::string& name, const std::string& root = std::string());

/**
 * Every SCSI disk of this host that is not running, e.g. "sdc is transport-offline", and every other SCSI
 * device, tapes for one, e.g. "the device at 3:0:0:1 is offline". Throws Unreadable where that cannot be
 * told.
 */
std::vector<std::string> disksNotRunning(const std::string& root = std::string());

/**
 * The SCSI disks that carry a WWN, by what the kernel keeps of their identity; in lower and upper case. None
 * for an empty WWN.
 */
std::vector<std::string> disksWithWwn(const std::string& wwn, const std::string& root = std::string());

} // namespace ovra::disk

#endif

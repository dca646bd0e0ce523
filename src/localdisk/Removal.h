#ifndef LOCALDISK_REMOVAL_H
#define LOCALDISK_REMOVAL_H

#include "localdisk/DiskJob.h"

#include <ovra/disk/ScsiDisks.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace ovra::tessel {

/** What uses these disks and their map, a sentence each; or may do. */
std::vector<std::string> usesOf(const std::vector<disk::ScsiDisk>& disks,
                                const std::optional<disk::MultipathMap>& map);

/**
 * Writes what waits for them to these disks, from the top: what stands on them, the map, the paths. A failure
 * throws; it is only told where isForced.
 * @param limit of each.
 */
void writeBack(const DiskJob& job, const std::vector<disk::ScsiDisk>& disks, std::chrono::seconds limit,
               bool isForced);

/** Removes a map. Throws when it stays. */
void removeMap(const DiskJob& job, const disk::MultipathMap& map);

/** Has the kernel remove a map as soon as nobody has it open. */
void removeMapLater(const DiskJob& job, const disk::MultipathMap& map);

/**
 * Removes a disk from the kernel.
 * @param isStill asked as the last thing whether it may go; "" when it may, else why not.
 * @return "" when it is gone, else why it stays.
 */
std::string removeDisk(const DiskJob& job, const disk::ScsiDisk& disk,
                       const std::function<std::string()>& isStill);

} // namespace ovra::tessel

#endif

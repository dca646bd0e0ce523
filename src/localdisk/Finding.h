#ifndef LOCALDISK_FINDING_H
#define LOCALDISK_FINDING_H

#include "localdisk/Sight.h"
#include "localdisk/Ways.h"

#include <vector>

namespace ovra::tessel {

/**
 * Has the kernel find the disks of the object, and renews those that stand under another disk's names. Under
 * the rescan lock. Throws when none is found in time, or when one that is in use is in the way.
 */
std::vector<disk::ScsiDisk> findDisks(const DiskJob& job, const Ways& ways);

} // namespace ovra::tessel

#endif

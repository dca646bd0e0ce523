#ifndef LOCALDISK_FINDING_H
#define LOCALDISK_FINDING_H

#include "localdisk/Sight.h"
#include "localdisk/Ways.h"

#include <functional>
#include <vector>

namespace ovra::tessel {

/**
 * Has the kernel find the disks of the object, and renews those that stand under another disk's names. Under
 * the rescan lock. Throws when none is found in time, or when one that is in use is in the way.
 * @param show shows the object to this host, in case that it is not visible: the request to hide it of a call
 * that was killed may reach the array late. Asked ever more seldom while nothing is found.
 */
std::vector<disk::ScsiDisk> findDisks(const DiskJob& job, const Ways& ways,
                                      const std::function<void()>& show);

} // namespace ovra::tessel

#endif

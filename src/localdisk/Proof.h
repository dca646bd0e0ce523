#ifndef LOCALDISK_PROOF_H
#define LOCALDISK_PROOF_H

#include "localdisk/DiskJob.h"

#include <ovra/disk/ScsiDisks.h>

#include <functional>
#include <string>
#include <vector>

namespace ovra::tessel {

/** What was proved. */
struct ProvedDisk
{
    std::string path;
    std::vector<std::string> disks; ///< the paths, e.g. "sdc"
    std::uint64_t bytes = 0;
};

/** Gives the disks that have answered as the object. */
using FindDisks = std::function<std::vector<disk::ScsiDisk>()>;

/**
 * Finds the disks and proves them, and the map on them, which is waited for when it is coming. Finds again
 * when one goes meanwhile. Throws, with the name of what differs.
 */
ProvedDisk prove(const DiskJob& job, const FindDisks& find, Sizes sizes);

} // namespace ovra::tessel

#endif

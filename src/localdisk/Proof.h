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

enum class Sizes
{
    PROVED, ///< another size than the array's is an error
    GROWN   ///< is taken over first
};

/** Gives the disks that have answered as the object. */
using FindDisks = std::function<std::vector<disk::ScsiDisk>()>;

/**
 * Finds the disks and proves them, and the map on them, which is waited for when it is coming. Finds again
 * when one goes meanwhile. Throws, with the name of what differs.
 */
ProvedDisk prove(const DiskJob& job, const FindDisks& find, Sizes sizes);

/** "67108864 bytes" */
std::string bytesText(std::uint64_t bytes);

/** Why a path of a map may not be one; "" when it may: it is the object, or was it and is dead now. */
std::string foreignPath(const DiskJob& job, const std::string& name);

} // namespace ovra::tessel

#endif

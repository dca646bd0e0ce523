#ifndef LOCALDISK_WAYS_H
#define LOCALDISK_WAYS_H

#include "localdisk/DiskJob.h"

#include <string>
#include <vector>

namespace ovra::tessel {

/** The kernel's SCSI hosts, e.g. "1", by which this host reaches the array. */
struct Ways
{
    std::vector<std::string> all;
    std::vector<std::string> online; ///< those that can be scanned
    std::vector<std::string> others; ///< can be scanned also; seem to lead to another array, by their disks
    std::vector<std::string> away;   ///< of those that cannot, a sentence each
};

/** ID of the initiator's host on the array; empty when it belongs to none. */
std::string hostOf(const DiskJob& job, const HostInitiator& initiator);

/**
 * The sessions and ports of an initiator, and of the others of this host that the array counts to the same
 * host.
 * @param hostID as the array has it.
 */
Ways waysOf(const DiskJob& job, const HostInitiator& initiator, const std::string& hostID);

/** Those of all initiators of this host that the array counts to a host; none is taken for another array's.
 */
Ways waysOf(const DiskJob& job, const std::string& hostID);

/** Throws when none is online. */
void requireOnline(const DiskJob& job, const HostInitiator& initiator, const Ways& ways);

} // namespace ovra::tessel

#endif

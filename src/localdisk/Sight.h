#ifndef LOCALDISK_SIGHT_H
#define LOCALDISK_SIGHT_H

#include "localdisk/DiskJob.h"

#include <ovra/disk/ScsiDisks.h>

#include <string>
#include <vector>

namespace ovra::tessel {

/** What disks of this host turn out to be, asked of themselves, to one object. */
struct Sight
{
    std::vector<disk::ScsiDisk> ours;
    std::vector<disk::ScsiDisk> stale;  ///< ours, under the names of the disk that was at their number before
    std::vector<disk::ScsiDisk> silent; ///< were ours when they were found; do not answer now
    std::vector<disk::ScsiDisk> reused; ///< were ours when they were found; are another disk now
    std::vector<std::string> foreign;   ///< say that they have our WWN and another ID; a sentence each
    std::vector<std::string> hanging;   ///< SCSI hosts of disks that did not even fail in time
};

/** Looks at disks. Those that the kernel knows to be dead are not asked. @param limit of all answers. */
Sight lookAt(const DiskJob& job, const std::vector<disk::ScsiDisk>& disks, std::chrono::seconds limit);

/** Of the disks on some SCSI hosts, those that were ours when they were found, or may have been. */
Sight lookForOurs(const DiskJob& job, const std::vector<std::string>& hosts);

/** Looks at one disk of each target: enough to tell which of them hangs. */
Sight lookAtTargets(const DiskJob& job, const std::vector<std::string>& hosts, std::chrono::seconds limit);

/** Whether the kernel has a disk, running, that has no node here: nothing can be asked of it. */
bool isWithoutNode(const disk::ScsiDisk& disk);
std::string withoutNode(const disk::ScsiDisk& disk); ///< says so

/** Asks one disk whether it is the object; "" when it is, else what it is instead. */
std::string differenceOf(const DiskJob& job, const std::string& name);

/** Why a path of a map may not be one; "" when it may: it is the object, or was it and is dead now. */
std::string foreignPath(const DiskJob& job, const std::string& name);

} // namespace ovra::tessel

#endif

#ifndef LOCALDISK_DEADDISKS_H
#define LOCALDISK_DEADDISKS_H

#include "localdisk/DiskJob.h"
#include "localdisk/Ways.h"

#include <ovra/disk/ReadIdentity.h>
#include <ovra/disk/ScsiDisks.h>

#include <map>
#include <string>
#include <vector>

namespace ovra::tessel {

/** A disk of this host with which something is amiss. */
struct AmissDisk
{
    disk::ScsiDisk disk;
    bool isDead; ///< nobody can want it: it may go
    std::string reason;
};

/** Tells the dead disks that this host has of an array from all others. */
class DeadDisks
{
public:
    /** @param job of the host that the array sees this one as. */
    DeadDisks(const DiskJob& job, Ways ways) : m_job(job), m_ways(std::move(ways)) {}

    /** Looks at all. */
    std::vector<AmissDisk> find();
    /** Looks again at one, with all that are in a map with it. @return "" when it may go, else why not. */
    std::string doubtAbout(const disk::ScsiDisk& disk);

private:
    std::vector<AmissDisk> examine(const std::vector<disk::ScsiDisk>& disks);
    AmissDisk examine(const disk::ScsiDisk& disk, const disk::DiskAnswer& answer);
    AmissDisk examineMissing(const disk::ScsiDisk& disk);
    AmissDisk examineRenamed(const disk::ScsiDisk& disk, const disk::DiskIdentity& now);
    std::string wwnOf(const StorageObject& object) const;
    bool isShown(const disk::DiskIdentity& identity) const;
    bool isOfArray(const disk::DiskIdentity& identity) const;
    bool isTargetOfArray(const disk::ScsiDisk& disk);
    std::string otherNumberOf(const disk::ScsiDisk& disk) const;

    const DiskJob& m_job;
    const Ways m_ways;
    std::map<std::string, bool> m_targets; ///< "1:0:0": whether it is one of the array
};

} // namespace ovra::tessel

#endif

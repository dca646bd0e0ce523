#include "localdisk/Sight.h"

#include "localdisk/AskAll.h"

#include <ovra/disk/ReadIdentity.h>

#include <algorithm>

namespace ovra::tessel {
namespace {

void sort(const DiskJob& job, const disk::ScsiDisk& disk, const disk::DiskIdentity& now, Sight& sight)
{
    const bool wasOurs = disk.known.wwn == job.wwn;
    if (now.wwn.empty()) {
        if (wasOurs) {
            sight.silent.push_back(disk);
        }
    } else if (now.wwn != job.wwn) {
        if (wasOurs) {
            sight.reused.push_back(disk);
        }
    } else if (now.lunId != job.volume.id) {
        sight.foreign.push_back("/dev/" + disk.name + " has its WWN, and is number " + now.lunId +
                                " of its array");
    } else {
        (wasOurs || disk.known.wwn.empty() ? sight.ours : sight.stale).push_back(disk);
    }
}

} // namespace

Sight lookAt(const DiskJob& job, const std::vector<disk::ScsiDisk>& disks, std::chrono::seconds limit)
{
    const std::vector<std::optional<disk::DiskIdentity>> identities = askWho(disks, limit);
    Sight sight;
    for (size_t i = 0; i < disks.size(); ++i) {
        sort(job, disks[i], identities[i].value_or(disk::DiskIdentity()), sight);
        const std::string host = disks[i].host();
        if (!identities[i] && disks[i].isRunning() &&
            std::find(sight.hanging.begin(), sight.hanging.end(), host) == sight.hanging.end()) {
            sight.hanging.push_back(host);
        }
    }
    return sight;
}

Sight lookForOurs(const DiskJob& job, const std::vector<std::string>& hosts)
{
    std::vector<disk::ScsiDisk> disks = disk::scsiDisksOf(hosts);
    disks.erase(std::remove_if(disks.begin(), disks.end(),
                               [&](const disk::ScsiDisk& disk) {
                                   return !disk.known.wwn.empty() && disk.known.wwn != job.wwn;
                               }),
                disks.end());
    return lookAt(job, disks, job.step());
}

std::string differenceOf(const DiskJob& job, const std::string& name)
{
    const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
    if (!disk) {
        return "/dev/" + name + " is no SCSI disk";
    }
    const Sight sight = lookAt(job, {*disk}, job.step());
    if (!sight.ours.empty()) {
        return "";
    }
    if (!sight.foreign.empty()) {
        return sight.foreign.front();
    }
    if (!sight.stale.empty()) {
        return "/dev/" + name + " stands under the names of another disk";
    }
    return "/dev/" + name + (sight.silent.empty() ? " is another disk" : " does not answer");
}

} // namespace ovra::tessel

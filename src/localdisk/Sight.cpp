#include "localdisk/Sight.h"

#include "localdisk/AskAll.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/ReadIdentity.h>

#include <algorithm>
#include <set>

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
    std::vector<disk::ScsiAddress> addresses = disk::scsiAddressesOf(hosts);
    addresses.erase(std::remove_if(addresses.begin(), addresses.end(),
                                   [&](const disk::ScsiAddress& address) {
                                       const std::string known = disk::knownAt(address.text).wwn;
                                       return !known.empty() && known != job.wwn;
                                   }),
                    addresses.end());
    return lookAt(job, disk::scsiDisksAt(addresses), job.step());
}

Sight lookAtTargets(const DiskJob& job, const std::vector<std::string>& hosts, std::chrono::seconds limit)
{
    std::set<std::string> targets;
    std::vector<disk::ScsiDisk> disks;
    for (const disk::ScsiAddress& address : disk::scsiAddressesOf(hosts)) {
        const std::optional<disk::ScsiDisk> disk =
            targets.count(address.target()) == 0 ? disk::scsiDiskAt(address.text) : std::nullopt;
        if (disk && disk->isRunning()) {
            targets.insert(address.target());
            disks.push_back(*disk);
        }
    }
    return lookAt(job, disks, limit);
}

bool isWithoutNode(const disk::ScsiDisk& disk)
{
    if (disk::isThere("/dev/" + disk.name)) {
        return false;
    }
    const std::optional<disk::ScsiDisk> now = disk::scsiDisk(disk.name); // else it goes with its node
    return now && now->address == disk.address && now->isRunning();
}

std::string withoutNode(const disk::ScsiDisk& disk)
{
    return "the kernel has the disk " + disk.name + ", and there is no /dev/" + disk.name + " here";
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

std::string foreignPath(const DiskJob& job, const std::string& name)
{
    const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
    if (disk && !disk->isRunning()) {
        return disk->known.wwn == job.wwn ? ""
                                          : "/dev/" + name + " is " + disk->state + " and was another disk";
    }
    std::string difference = differenceOf(job, name);
    if (!difference.empty() || !disk) {
        return difference;
    }
    return job.bytes == 0 || disk->bytes == job.bytes
               ? ""
               : "/dev/" + name + " has " + bytesText(disk->bytes) + " and not " + bytesText(job.bytes);
}

} // namespace ovra::tessel

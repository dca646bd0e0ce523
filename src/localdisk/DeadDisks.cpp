#include "localdisk/DeadDisks.h"

#include "host/Commands.h"
#include "job/AccessMap.h"
#include "localdisk/AskAll.h"
#include "localdisk/Removal.h"
#include "storage/DiskKinds.h"

#include <ovra/disk/ByIdLink.h>
#include <ovra/disk/Files.h>
#include <ovra/disk/Names.h>

#include <algorithm>

namespace ovra::tessel {
namespace {

constexpr const char* NEVER_REMOVED = "0"; // LUN 0 is the target's own
constexpr const char* NAA = "3";           // begins a WWID whose rest is a designator
constexpr unsigned MOST_NEIGHBOURS = 8;    // are asked for, to know a target by
constexpr MOType KINDS[] = {MO_LUN, MO_SNAPSHOT};

std::string targetOf(const disk::ScsiDisk& disk)
{
    return disk.address.substr(0, disk.address.rfind(':'));
}

bool isSame(const disk::DiskIdentity& one, const disk::DiskIdentity& other)
{
    return one.wwn == other.wwn && one.lunId == other.lunId;
}

AmissDisk stays(const disk::ScsiDisk& disk, const std::string& reason)
{
    return {disk, false, reason};
}

/** Those at the other numbers of a disk's target. */
std::vector<disk::ScsiDisk> neighboursOf(const disk::ScsiDisk& disk)
{
    std::vector<disk::ScsiDisk> disks = disk::scsiDisksOf({disk.host()});
    disks.erase(std::remove_if(disks.begin(), disks.end(),
                               [&](const disk::ScsiDisk& other) {
                                   return targetOf(other) != targetOf(disk) || other.address == disk.address;
                               }),
                disks.end());
    return disks;
}

/** Whether udev runs, and has done all that it was told of. */
bool isUdevAtRest(const DiskJob& job)
{
    const std::string limit = " --timeout=" + std::to_string(job.options.stepSeconds);
    return runWithin(2 * job.step(), "udevadm control --ping" + limit + " >/dev/null 2>&1 && udevadm settle" +
                                         limit + " >/dev/null 2>&1") == 0;
}

/** The WWNs by which udev's links and the map call a disk. */
std::vector<std::string> namesOf(const disk::ScsiDisk& disk)
{
    std::vector<std::string> names;
    for (const std::string& link : disk::namesIn(disk::BY_ID_DIRECTORY)) {
        const bool isDesignator = link.compare(0, 6, "scsi-3") == 0 || link.compare(0, 6, "wwn-0x") == 0;
        if (isDesignator && disk::lastName(disk::targetOf(disk::BY_ID_DIRECTORY + link)) == disk.name) {
            names.push_back(disk::identifierOf(link));
        }
    }
    const std::optional<disk::MultipathMap> map = disk::multipathMap(disk.map);
    if (map && map->wwid.compare(0, 1, NAA) == 0) {
        names.push_back(map->wwid.substr(1));
    }
    return names;
}

} // namespace

std::vector<AmissDisk> DeadDisks::find()
{
    const std::vector<AmissDisk> alone = examine(disk::scsiDisksOf(m_ways.all));
    std::vector<AmissDisk> found = alone;
    for (AmissDisk& amiss : found) {
        const std::optional<disk::MultipathMap> map = disk::multipathMap(amiss.disk.map);
        for (const std::string& path : map&& amiss.isDead ? map->paths : std::vector<std::string>()) {
            if (std::none_of(alone.begin(), alone.end(), [&](const AmissDisk& other) {
                    return other.disk.name == path && other.isDead;
                })) {
                amiss = stays(amiss.disk, "its map " + map->name + " has the path " + path + ", which stays");
                break;
            }
        }
    }
    return found;
}

std::string DeadDisks::doubtAbout(const disk::ScsiDisk& disk)
{
    const std::optional<disk::ScsiDisk> itself = disk::scsiDisk(disk.name);
    if (!itself || itself->address != disk.address || itself->map != disk.map) {
        return "it has changed meanwhile: call it again";
    }
    std::vector<disk::ScsiDisk> now = {*itself};
    const std::optional<disk::MultipathMap> map = disk::multipathMap(disk.map);
    for (const std::string& name : map ? map->paths : std::vector<std::string>()) {
        const std::optional<disk::ScsiDisk> path = disk::scsiDisk(name);
        if (!path) {
            return "its map " + map->name + " holds what is no SCSI disk, " + name;
        }
        if (name != disk.name) {
            now.push_back(*path);
        }
    }
    const std::vector<AmissDisk> amiss = examine(now);
    const auto doubt =
        std::find_if(amiss.begin(), amiss.end(), [](const AmissDisk& other) { return !other.isDead; });
    if (doubt != amiss.end()) {
        return "/dev/" + doubt->disk.name + ": " + doubt->reason;
    }
    return amiss.size() == now.size() ? "" : "it is well by now";
}

std::vector<AmissDisk> DeadDisks::examine(const std::vector<disk::ScsiDisk>& disks)
{
    const std::vector<disk::DiskAnswer> answers = askAll(disks, m_job.step(), disk::askDisk);
    std::vector<AmissDisk> found;
    for (size_t i = 0; i < disks.size(); ++i) {
        const AmissDisk amiss = examine(disks[i], answers[i]);
        if (!amiss.reason.empty()) {
            found.push_back(amiss);
        }
    }
    return found;
}

/** An empty reason: nothing is amiss. */
AmissDisk DeadDisks::examine(const disk::ScsiDisk& disk, const disk::DiskAnswer& answer)
{
    if (!disk.isRunning()) {
        return stays(disk, "it is " + disk.state + " and cannot be asked");
    }
    const disk::DiskIdentity now = disk::parsePage83(answer.page).value_or(disk::DiskIdentity());
    if (now.wwn.empty() && !answer.hasNoUnit) {
        return stays(disk, "it does not answer");
    }
    const bool isOther = !answer.hasNoUnit && !disk.known.wwn.empty() && !isSame(disk.known, now);
    const auto hasOldNames = [&] {
        const std::vector<std::string> names = namesOf(disk);
        const std::vector<std::string> own = disk::unitDesignators(answer.page);
        return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return std::find(own.begin(), own.end(), name) == own.end();
        });
    };
    if (!answer.hasNoUnit && !isOther) {
        if (!hasOldNames()) {
            return stays(disk, "");
        }
        const bool isAtRest = isUdevAtRest(m_job);
        if (!isAtRest || !hasOldNames()) {
            return stays(disk,
                         isAtRest ? "" : "its names are another disk's, and udev is late or does not run");
        }
    }
    if (disk.lun() == NEVER_REMOVED) {
        return stays(disk, "it has the LUN number 0, which is never removed");
    }
    AmissDisk amiss = answer.hasNoUnit ? examineMissing(disk) : examineRenamed(disk, now);
    const std::vector<std::string> uses =
        amiss.isDead ? usesOf({disk}, disk::multipathMap(disk.map)) : std::vector<std::string>();
    return uses.empty() ? amiss : stays(disk, "it is in use: " + listed(uses));
}

/** Of one at whose number its target has nothing. */
AmissDisk DeadDisks::examineMissing(const disk::ScsiDisk& disk)
{
    if (disk.known.wwn.empty()) {
        return stays(disk, "nothing is mapped at its number, and what it was is not known");
    }
    const bool isShownYet = isShown(disk.known);
    if (!isOfArray(disk.known) && !isTargetOfArray(disk)) {
        return stays(disk,
                     "nothing is mapped at its number, and nothing shows that it was a disk of this array");
    }
    if (!isShownYet) {
        return {disk, true,
                "nothing is mapped at its number any more: the array says so, and its target too"};
    }
    const std::string other = otherNumberOf(disk);
    return other.empty() ? stays(disk, "the array shows it to this host, but nothing is mapped at its number")
                         : AmissDisk{disk, true, "it is mapped at another number now, as /dev/" + other};
}

/** Of one that is another disk than its names say. */
AmissDisk DeadDisks::examineRenamed(const disk::ScsiDisk& disk, const disk::DiskIdentity& now)
{
    return isOfArray(now)
               ? AmissDisk{disk, true,
                           "it is number " + now.lunId + " of the array now, under another's names"}
               : stays(disk, "it is another disk than its names say, and none of this array");
}

std::string DeadDisks::wwnOf(const StorageObject& object) const
{
    try {
        return DiskJob(*m_job.manager, object, m_job.options).wwn;
    } catch (const OvraAPIException&) {
        return "";
    }
}

/** What is visible, and cannot be read, is taken for the disk. */
bool DeadDisks::isShown(const disk::DiskIdentity& identity) const
{
    return std::any_of(std::begin(KINDS), std::end(KINDS), [&](MOType kind) {
        const StorageObject object{kind, identity.lunId};
        const HostInitiator any{};
        if (!AccessMap(*m_job.manager, object, any, m_job.options.access).isVisible(m_job.volume.id)) {
            return false;
        }
        const std::string wwn = wwnOf(object);
        return wwn.empty() || wwn == identity.wwn;
    });
}

/** Whether the array has an object of this identity; no, where it does not tell. */
bool DeadDisks::isOfArray(const disk::DiskIdentity& identity) const
{
    return std::any_of(std::begin(KINDS), std::end(KINDS), [&](MOType kind) {
        return wwnOf({kind, identity.lunId}) == identity.wwn;
    });
}

/** The disk of an object that was deleted is known by its neighbours: all of a target are of one array. */
bool DeadDisks::isTargetOfArray(const disk::ScsiDisk& disk)
{
    const auto [target, isNew] = m_targets.emplace(targetOf(disk), false);
    if (isNew) {
        std::vector<disk::ScsiDisk> neighbours = neighboursOf(disk);
        neighbours.resize(std::min<size_t>(neighbours.size(), MOST_NEIGHBOURS));
        for (const std::optional<disk::DiskIdentity>& now : askWho(neighbours, m_job.step())) {
            target->second = target->second || (now && !now->wwn.empty() && isOfArray(*now));
        }
    }
    return target->second;
}

/** The name of the disk that this one's identity has at another number of the target; "" when there is none.
 */
std::string DeadDisks::otherNumberOf(const disk::ScsiDisk& disk) const
{
    const std::vector<disk::ScsiDisk> neighbours = neighboursOf(disk);
    const std::vector<std::optional<disk::DiskIdentity>> now = askWho(neighbours, m_job.step());
    const auto same = std::find_if(now.begin(), now.end(), [&](const std::optional<disk::DiskIdentity>& one) {
        return one && isSame(*one, disk.known);
    });
    return same == now.end() ? "" : neighbours[static_cast<size_t>(same - now.begin())].name;
}

} // namespace ovra::tessel

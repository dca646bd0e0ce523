#include "localdisk/HostDisks.h"

#include "disk/HostFiles.h"

#include <ovra/disk/ScsiHosts.h>
#include <ovra/disk/Uses.h>

#include <algorithm>
#include <map>

namespace tesselctl {
namespace {

using ovra::disk::ScsiDisk;

/** After so many disks that the array does not know a target is taken for one of another array. */
constexpr unsigned MOST_STRANGERS = 8;

/** "1:0:0": all disks of a target are of one array. */
std::string targetOf(const ScsiDisk& disk)
{
    return disk.address.substr(0, disk.address.rfind(':'));
}

/** The targets of the array. A deleted object's disk is known by its neighbours alone. */
std::set<std::string> targetsOf(ArrayObjects& objects, const std::vector<ScsiDisk>& disks)
{
    std::set<std::string> targets;
    for (const ScsiDisk& disk : disks) {
        if (objects.isShown(disk.known)) {
            targets.insert(targetOf(disk));
        }
    }
    std::map<std::string, unsigned> strangers;
    for (const ScsiDisk& disk : disks) {
        const std::string target = targetOf(disk);
        if (targets.count(target) == 0 && !disk.known.wwn.empty() && strangers[target] < MOST_STRANGERS) {
            objects.find(disk.known).kind != nullptr ? void(targets.insert(target))
                                                     : void(++strangers[target]);
        }
    }
    return targets;
}

/** Paths of one identity are one disk; what has none stands alone. */
void add(const ScsiDisk& path, ArrayObjects& objects, std::vector<HostDisk>& disks)
{
    const auto same = std::find_if(disks.begin(), disks.end(), [&](const HostDisk& disk) {
        return !path.known.wwn.empty() && disk.identity.wwn == path.known.wwn &&
               disk.identity.lunId == path.known.lunId;
    });
    if (same != disks.end()) {
        same->paths.push_back(path);
    } else {
        disks.push_back({"/dev/" + path.name,
                         path.bytes,
                         path.known,
                         path.known.wwn.empty() ? ArrayObject() : objects.find(path.known),
                         {path},
                         {}});
    }
}

/** Finds the map of a disk, and who uses it. */
void complete(HostDisk& disk, const std::string& root, std::set<std::string>& unknown)
{
    std::set<std::string> uses;
    for (const ScsiDisk& path : disk.paths) {
        if (const auto map = ovra::disk::multipathMap(path.map, root)) {
            disk.device = "/dev/mapper/" + map->name;
            disk.bytes = map->bytes;
        }
        const ovra::disk::Uses found = ovra::disk::usesBeyondMap(path.name, root);
        uses.insert(found.found.begin(), found.found.end());
        unknown.insert(found.unknown.begin(), found.unknown.end());
    }
    disk.uses.assign(uses.begin(), uses.end());
}

} // namespace

HostDisks disksOfArray(Session& session)
{
    const std::string root = hostPath("");
    ArrayObjects objects(session);
    std::vector<std::string> numbers;
    for (const ovra::disk::ScsiHost& host : ovra::disk::scsiHosts(root)) {
        numbers.push_back(host.number);
        objects.readShownTo({host.isFC, host.initiator});
    }
    const std::vector<ScsiDisk> paths = ovra::disk::scsiDisksOf(numbers, root);
    const std::set<std::string> targets = targetsOf(objects, paths);
    HostDisks result;
    for (const ScsiDisk& path : paths) {
        if (targets.count(targetOf(path)) != 0) {
            add(path, objects, result.disks);
        }
    }
    for (HostDisk& disk : result.disks) {
        complete(disk, root, result.unknown);
    }
    return result;
}

} // namespace tesselctl

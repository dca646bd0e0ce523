#include "localdisk/Removal.h"

#include "host/Commands.h"
#include "host/Limited.h"
#include "host/WriteBack.h"
#include "localdisk/WriteWithin.h"
#include "session/Log.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Names.h>
#include <ovra/disk/Nodes.h>
#include <ovra/disk/Processes.h>
#include <ovra/disk/Uses.h>

#include <algorithm>
#include <chrono>
#include <set>

namespace ovra::tessel {
namespace {

constexpr unsigned OPENED_FOR_A_MOMENT_S = 2;
constexpr unsigned MAP_TRIES = 5; // udev has a device open for a moment whenever something happens to it

/** Writes back, in time; "" when it was done, else why not. */
std::string writeBackWithin(std::chrono::seconds limit, const std::function<std::string()>& writeBack)
{
    return within<std::string>(limit, writeBack)
        .value_or("it takes longer than " + std::to_string(limit.count()) + " s");
}

/** The nodes on all these disks, each once, those at the bottom first. */
std::vector<std::string> nodesOn(const std::vector<disk::ScsiDisk>& disks)
{
    std::vector<std::string> names(disks.size());
    std::transform(disks.begin(), disks.end(), names.begin(),
                   [](const disk::ScsiDisk& disk) { return disk.name; });
    for (const disk::ScsiDisk& disk : disks) {
        for (const disk::Node& node : disk::nodesOn(disk.name)) {
            if (std::find(names.begin(), names.end(), node.name) == names.end()) {
                names.push_back(node.name);
            }
        }
    }
    return names;
}

/** Those who have one of the nodes open for longer than what udev runs for every new disk. */
std::vector<std::string> lastingOpeners(const std::vector<std::string>& nodes)
{
    const Deadline deadline(OPENED_FOR_A_MOMENT_S);
    std::vector<std::string> openers = disk::openersOf(nodes);
    while (!openers.empty() && deadline.pause()) {
        openers = disk::openersOf(nodes);
    }
    return openers;
}

void runTool(const DiskJob& job, const std::string& command)
{
    runWithin(2 * job.step(),
              "timeout " + std::to_string(job.options.stepSeconds) + " " + command + " >/dev/null 2>&1");
}

bool isThere(const disk::MultipathMap& map)
{
    const std::optional<disk::MultipathMap> now = disk::multipathMap(map.node);
    return now && now->wwid == map.wwid;
}

bool isThere(const disk::ScsiDisk& disk)
{
    const std::optional<disk::ScsiDisk> now = disk::scsiDisk(disk.name);
    return now && now->address == disk.address;
}

} // namespace

std::vector<std::string> usesOf(const std::vector<disk::ScsiDisk>& disks,
                                const std::optional<disk::MultipathMap>& map)
{
    std::set<std::string> uses;
    const auto add = [&](const std::string& name) {
        const disk::Uses found = disk::usesBeyondMap(name);
        uses.insert(found.found.begin(), found.found.end());
        for (const std::string& reason : found.unknown) {
            uses.insert(
                std::string("whether ").append(name).append(" is in use cannot be told, ").append(reason));
        }
    };
    std::vector<std::string> names = nodesOn(disks);
    for (const disk::ScsiDisk& disk : disks) {
        add(disk.name);
    }
    if (map) {
        add(map->node);
        if (std::find(names.begin(), names.end(), map->node) == names.end()) { // it has lost its paths
            names.push_back(map->node);
        }
    }
    return uses.empty() ? lastingOpeners(names) : std::vector<std::string>(uses.begin(), uses.end());
}

void writeBack(const DiskJob& job, const std::vector<disk::ScsiDisk>& disks, std::chrono::seconds limit,
               bool isForced)
{
    const auto hasGone = [&](const std::string& name) { // another removal of it ends just now
        return std::any_of(disks.begin(), disks.end(),
                           [&](const disk::ScsiDisk& disk) { return disk.name == name && !isThere(disk); });
    };
    const auto tell = [&](const std::string& what, const std::string& problem, bool isLost) {
        if (problem.empty()) {
            return;
        }
        const std::string sentence =
            "data not yet written to " + what + " cannot be written back: " + problem;
        if (!isForced && !isLost) {
            job.fail(sentence + "; nothing was removed");
        }
        COMMLOG(OS_LOG_WARN, "%s", sentence.c_str());
    };
    for (const disk::ScsiDisk& disk : disks) {
        for (const std::string& mount : disk::usesOf(disk.name).unreached) {
            tell(mount, writeBackWithin(limit, [mount] { return writeBackMount(mount); }), false);
        }
    }
    const std::vector<std::string> nodes = nodesOn(disks);
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        const std::string device = "/dev/" + *node;
        if (disk::canAnswer(*node)) {
            const std::string problem = writeBackWithin(limit, [device] { return writeBackDevice(device); });
            tell(device, problem, hasGone(*node));
        } else { // nothing brings its data to it any more
            tell(device, "it is not running", true);
        }
    }
}

void removeMap(const DiskJob& job, const disk::MultipathMap& map)
{
    if (!disk::isMapName(map.name)) {
        job.fail("the map " + map.node + " has a name that no command can be given; remove it by hand");
    }
    if (!disk::canAnswer(map.node)) { // what waits for a path would wait for ever
        runTool(job, "dmsetup message " + map.name + " 0 fail_if_no_path");
    }
    Deadline deadline(job.options.stepSeconds);
    for (unsigned tries = 0; isThere(map); ++tries) {
        if (tries == MAP_TRIES || deadline.isOver()) {
            job.fail("the map " + map.name + " stays: multipath -f " + map.name + " says why");
        }
        COMMLOG(OS_LOG_INFO, "Removing the map %s (%s).", map.name.c_str(), map.node.c_str());
        runTool(job, "multipath -f " + map.name);
        if (isThere(map)) {
            deadline.pause();
        }
    }
}

void removeMapLater(const DiskJob& job, const disk::MultipathMap& map)
{
    if (disk::isMapName(map.name)) {
        runTool(job, "dmsetup remove --deferred " + map.name);
    }
}

std::string removeDisk(const DiskJob& job, const disk::ScsiDisk& disk,
                       const std::function<std::string()>& isStill)
{
    // By its address: a name may have become another disk's.
    const std::string device = "/sys/class/scsi_device/" + disk.address + "/device";
    std::string refusal = isStill();
    if (!refusal.empty()) {
        return refusal;
    }
    if (!isThere(disk)) {
        return "";
    }
    COMMLOG(OS_LOG_INFO, "Removing /dev/%s, %s, of %s.", disk.name.c_str(), disk.address.c_str(),
            job.name().c_str());
    const std::string problem = writeWithin(job.step(), device + "/delete", "1");
    const Deadline deadline(job.options.stepSeconds);
    while (isThere(disk)) {
        if (!deadline.pause()) {
            return "/dev/" + disk.name + " stays" + (problem.empty() ? "" : ": " + problem);
        }
    }
    return "";
}

} // namespace ovra::tessel

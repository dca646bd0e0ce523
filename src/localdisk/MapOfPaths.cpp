#include "localdisk/MapOfPaths.h"

#include "host/Commands.h"
#include "localdisk/Sight.h"

#include <ovra/disk/Names.h>
#include <ovra/disk/Nodes.h>

#include <algorithm>
#include <set>
#include <unistd.h>

namespace ovra::tessel {

std::vector<disk::ScsiDisk> disksNow(const std::vector<std::string>& names)
{
    std::vector<disk::ScsiDisk> found;
    for (const std::string& name : names) {
        const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
        if (!disk) {
            throw DiskWent{name};
        }
        found.push_back(*disk);
    }
    return found;
}

const std::optional<disk::MultipathMap>& MapOfPaths::waitForIt()
{
    waitForMap();
    while (m_map && waitForName()) {
        waitForMap(); // its number may be another map's by now
    }
    return m_map;
}

bool MapOfPaths::hasName() const
{
    return access(nameOfMap().c_str(), F_OK) == 0;
}

void MapOfPaths::waitForMap()
{
    for (std::string lack = lackOfMap(); !lack.empty(); lack = lackOfMap()) {
        if (!m_end.pause()) {
            m_job.fail(lack + " after " + std::to_string(m_job.options.mapSeconds) +
                       " s; multipathd status and its log say why");
        }
        m_hasWaited = true;
    }
}

/** @return whether time has passed. */
bool MapOfPaths::waitForName()
{
    bool hasPassed = false;
    while (!hasName() && !m_claims.isUdevLate() && m_end.pause()) {
        hasPassed = true;
    }
    m_hasWaited = m_hasWaited || hasPassed;
    return hasPassed;
}

/** What is missing at the map, and may come; "" when the map is right, or there is to be none. */
std::string MapOfPaths::lackOfMap()
{
    m_map.reset();
    std::set<std::string> nodes;
    std::string outside;
    for (const disk::ScsiDisk& disk : disksNow(m_names)) {
        disk.map.empty() ? void(outside = disk.name) : void(nodes.insert(disk.map));
    }
    if (nodes.size() > 1) {
        m_job.fail("its paths are in " + std::to_string(nodes.size()) +
                   " maps: " + listed({nodes.begin(), nodes.end()}));
    }
    if (nodes.empty()) {
        return lackOfNoMap();
    }
    m_map = disk::multipathMap(*nodes.begin());
    if (!m_map) {
        return "the map " + *nodes.begin() + " comes and goes";
    }
    checkForeign(*m_map);
    if (!outside.empty()) {
        return "/dev/" + outside + " is not in the map " + m_map->name;
    }
    return lackIn(*m_map);
}

/** What has to be waited for where no path is in a map yet. */
std::string MapOfPaths::lackOfNoMap()
{
    for (const std::string& name : m_names) {
        const Claim claim = m_claims.of(name);
        if (claim == Claim::YES) {
            return "the multipath map of /dev/" + name + " is not there";
        }
        if (claim == Claim::UNKNOWN) {
            return "neither udev nor multipath says whether there will be a map of /dev/" + name;
        }
    }
    return "";
}

/** Throws when the map holds what is not the object: no waiting makes that right. */
void MapOfPaths::checkForeign(const disk::MultipathMap& map) const
{
    for (const std::string& path : map.paths) {
        if (std::find(m_names.begin(), m_names.end(), path) != m_names.end()) {
            continue;
        }
        const std::string reason = foreignPath(m_job, path);
        if (!reason.empty()) {
            m_job.fail("the map " + map.name + " holds what is not it: " + reason);
        }
    }
    if (map.wwid.size() != m_job.wwn.size() + 1 || map.wwid.substr(1) != m_job.wwn) {
        m_job.fail("its paths are in the map " + map.name + " of another disk, " + map.wwid);
    }
}

std::string MapOfPaths::lackIn(const disk::MultipathMap& map)
{
    if (map.bytes != m_bytes && map.bytes != 0 && m_sizes == Sizes::GROWN && !m_isResized) {
        resize(map);
        return lackOfMap();
    }
    if (map.isSuspended || map.bytes == 0) {
        return "the map " + map.name + " is not ready";
    }
    if (map.bytes != m_bytes) {
        return "the map " + map.name + " has " + bytesText(map.bytes) + " and not " + bytesText(m_bytes);
    }
    if (map.isReadOnly && m_job.volume.type == MO_LUN) {
        return "the map " + map.name + " is read-only";
    }
    return disk::canAnswer(map.node) ? "" : "the map " + map.name + " has no path that works";
}

void MapOfPaths::resize(const disk::MultipathMap& map)
{
    m_isResized = true;
    if (disk::isMapName(map.name)) {
        runWithin(2 * m_job.step(), "timeout " + std::to_string(m_job.options.stepSeconds) +
                                        " multipathd resize map " + map.name + " >/dev/null 2>&1");
    }
}

} // namespace ovra::tessel

#include "localdisk/Proof.h"

#include "host/Commands.h"
#include "host/Limited.h"
#include "localdisk/MapClaims.h"
#include "localdisk/Sight.h"
#include "session/Log.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Names.h>
#include <ovra/disk/Nodes.h>

#include <algorithm>
#include <set>
#include <unistd.h>

namespace ovra::tessel {
namespace {

std::string bytesText(std::uint64_t bytes)
{
    return std::to_string(bytes) + " bytes";
}

/** Was taken away while it was looked at: what was found before is not so any more. */
struct DiskWent
{
    std::string disk;
};

constexpr unsigned MOST_TRIES = 5; ///< a process that was killed may leave that many disks that go yet

class Prover
{
public:
    Prover(const DiskJob& job, const std::vector<disk::ScsiDisk>& ours, Sizes sizes)
        : m_job(job), m_sizes(sizes), m_mapEnd(job.options.mapSeconds), m_claims(job)
    {
        for (const disk::ScsiDisk& disk : ours) {
            m_names.push_back(disk.name);
        }
    }

    ProvedDisk run()
    {
        checkPaths();
        waitForMap();
        while (m_map && waitForName()) {
            waitForMap(); // its number may be another map's by now
        }
        ProvedDisk proved{"/dev/" + m_names.front(), m_names, m_bytes};
        if (m_map) {
            proved.path = hasName() ? nameOfMap() : "/dev/" + m_map->node;
            proved.disks = m_map->paths;
        } else if (m_names.size() > 1) {
            COMMLOG(OS_LOG_WARN, "%s has %u paths and no multipath map: only %s is handed out.",
                    m_job.name().c_str(), static_cast<unsigned>(m_names.size()), proved.path.c_str());
        }
        if (m_hasWaited) {
            askAgain(); // last: a name that goes meanwhile leads nowhere, a number may be another map's
        }
        return proved;
    }

private:
    /** The paths as they are now. */
    std::vector<disk::ScsiDisk> disks() const
    {
        std::vector<disk::ScsiDisk> found;
        for (const std::string& name : m_names) {
            const std::optional<disk::ScsiDisk> disk = disk::scsiDisk(name);
            if (!disk) {
                throw DiskWent{name};
            }
            found.push_back(*disk);
        }
        return found;
    }

    void waitForMap()
    {
        for (std::string lack = lackOfMap(); !lack.empty(); lack = lackOfMap()) {
            if (!m_mapEnd.pause()) {
                m_job.fail(lack + " after " + std::to_string(m_job.options.mapSeconds) +
                           " s; multipathd status and its log say why");
            }
            m_hasWaited = true;
        }
    }

    std::string nameOfMap() const { return "/dev/mapper/" + m_map->name; }
    bool hasName() const { return access(nameOfMap().c_str(), F_OK) == 0; }

    /** @return whether time has passed. */
    bool waitForName()
    {
        bool hasPassed = false;
        while (!hasName() && !m_claims.isUdevLate() && m_mapEnd.pause()) {
            hasPassed = true;
        }
        m_hasWaited = m_hasWaited || hasPassed;
        return hasPassed;
    }

    void askAgain() const
    {
        for (const std::string& name : m_names) {
            const std::string difference = differenceOf(m_job, name);
            if (!difference.empty()) {
                static_cast<void>(disks()); // says so when it has gone
                m_job.fail(difference + " by now; call again");
            }
        }
    }

    void checkPaths()
    {
        std::vector<disk::ScsiDisk> found = disks();
        m_bytes = m_job.bytes != 0 ? m_job.bytes : found.front().bytes;
        if (m_sizes == Sizes::GROWN &&
            std::any_of(found.begin(), found.end(),
                        [&](const disk::ScsiDisk& disk) { return disk.bytes != m_bytes; })) {
            readSizes();
            found = disks();
        }
        for (const disk::ScsiDisk& disk : found) {
            if (disk.bytes != m_bytes) {
                m_job.fail("/dev/" + disk.name + " has " + bytesText(disk.bytes) + " where " +
                           (m_job.bytes != 0 ? "the array tells " : "another path has ") +
                           bytesText(m_bytes));
            }
            if (disk.isReadOnly != found.front().isReadOnly ||
                (disk.isReadOnly && m_job.volume.type == MO_LUN)) {
                m_job.fail("/dev/" + (disk.isReadOnly ? disk.name : found.front().name) + " is read-only");
            }
        }
    }

    void readSizes() const
    {
        std::vector<std::function<void()>> steps;
        for (const std::string& name : m_names) {
            steps.emplace_back([name] { disk::writeFile("/sys/block/" + name + "/device/rescan", "1"); });
        }
        doWithin(m_job.step(), steps);
    }

    /** What is missing at the map, and may come; "" when the map is right, or there is to be none. */
    std::string lackOfMap()
    {
        m_map.reset();
        std::set<std::string> nodes;
        std::string outside;
        for (const disk::ScsiDisk& disk : disks()) {
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
    std::string lackOfNoMap()
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
    void checkForeign(const disk::MultipathMap& map) const
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

    std::string lackIn(const disk::MultipathMap& map)
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

    void resize(const disk::MultipathMap& map)
    {
        m_isResized = true;
        if (disk::isMapName(map.name)) {
            runWithin(2 * m_job.step(), "timeout " + std::to_string(m_job.options.stepSeconds) +
                                            " multipathd resize map " + map.name + " >/dev/null 2>&1");
        }
    }

    const DiskJob& m_job;
    const Sizes m_sizes;
    const Deadline m_mapEnd;
    std::vector<std::string> m_names;
    std::uint64_t m_bytes = 0;
    std::optional<disk::MultipathMap> m_map;
    MapClaims m_claims;
    bool m_isResized = false;
    bool m_hasWaited = false;
};

} // namespace

ProvedDisk prove(const DiskJob& job, const FindDisks& find, Sizes sizes)
{
    for (unsigned tries = 1;; ++tries) {
        try {
            return Prover(job, find(), sizes).run();
        } catch (const DiskWent& gone) {
            if (tries == MOST_TRIES) {
                job.fail("/dev/" + gone.disk + " has gone while it was looked at; call again");
            }
        }
    }
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

#include "localdisk/Finding.h"

#include "host/Limited.h"
#include "localdisk/Removal.h"
#include "localdisk/WriteWithin.h"
#include "observer/Steps.h"
#include "session/Log.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/ScsiHosts.h>

#include <algorithm>
#include <iterator>

namespace ovra::tessel {
namespace {

constexpr std::chrono::seconds OTHERS(3);  ///< for the answers of disks of which one may be ours
constexpr const char* NEVER_REMOVED = "0"; // LUN 0 is the target's own

bool isOneOf(const std::vector<disk::ScsiDisk>& disks, const std::string& name)
{
    return std::any_of(disks.begin(), disks.end(),
                       [&](const disk::ScsiDisk& disk) { return disk.name == name; });
}

/** Looks for the disks of one object; scans where it must. One use. */
class Search
{
public:
    Search(const DiskJob& job, const Ways& ways, const std::function<void()>& show)
        : m_job(job), m_ways(ways), m_hosts(ways.online), m_show(show), m_end(job.options.findSeconds)
    {
    }

    std::vector<disk::ScsiDisk> run()
    {
        for (;;) {
            const Sight sight = look();
            if (!sight.foreign.empty()) {
                tellStep(HostEvent::REFUSED, "", sight.foreign.front());
                m_job.fail(sight.foreign.front() + ": it is a disk of another array; nothing was changed on "
                                                   "this host");
            }
            if (!sight.stale.empty()) {
                renew(sight.stale);
            } else if (isEnough(sight)) {
                return sight.ours;
            }
            if (m_end.isOver()) {
                sayNothing(sight);
            }
            scan();
        }
    }

private:
    /**
     * The disks that seem to be ours. Where some way has none that is, also one of each target, since none
     * that hangs is to be scanned; and when a scan has brought none there, all: one may be under old names.
     */
    Sight look()
    {
        Sight sight = lookForOurs(m_job, m_ways.all);
        if (sight.ours.size() < m_ways.online.size()) {
            const std::chrono::seconds limit = std::min(m_job.step(), OTHERS);
            const Sight more = m_isScanned ? lookAt(m_job, disk::scsiDisksOf(m_hosts), limit)
                                           : lookAtTargets(m_job, m_hosts, limit);
            leave(sight.hanging);
            leave(more.hanging);
            sight.ours.erase(std::remove_if(sight.ours.begin(), sight.ours.end(),
                                            [&](const disk::ScsiDisk& disk) { // it has changed meanwhile
                                                return isOneOf(more.silent, disk.name) ||
                                                       isOneOf(more.reused, disk.name);
                                            }),
                             sight.ours.end());
            sight.stale = more.stale;
            sight.foreign.insert(sight.foreign.end(), more.foreign.begin(), more.foreign.end());
        }
        return sight;
    }

    /** A host whose disks hang would hold the scan up, and everybody who waits for it. */
    void leave(const std::vector<std::string>& hanging)
    {
        std::vector<std::string> rest;
        std::copy_if(m_hosts.begin(), m_hosts.end(), std::back_inserter(rest), [&](const std::string& host) {
            return std::find(hanging.begin(), hanging.end(), host) == hanging.end();
        });
        if (!rest.empty() && rest.size() < m_hosts.size()) {
            COMMLOG(OS_LOG_WARN, "Disks of the SCSI hosts %s do not answer: these are not scanned for %s.",
                    listed(hanging).c_str(), m_job.name().c_str());
            m_hosts = rest;
        }
    }

    bool isEnough(const Sight& sight) const
    {
        return !sight.ours.empty() && (m_isScanned || sight.ours.size() >= m_ways.online.size());
    }

    void scan()
    {
        if (m_scans == 1) { // nothing was found where it seemed to be
            m_hosts.insert(m_hosts.end(), m_ways.others.begin(), m_ways.others.end());
        }
        std::vector<std::function<std::string()>> scans;
        for (const std::string& host : m_hosts) {
            scans.push_back(writing(disk::scanFileOf(host), disk::SCAN_ALL));
        }
        COMMLOG(OS_LOG_INFO, "Scanning the SCSI hosts %s for %s.", listed(m_hosts).c_str(),
                m_job.name().c_str());
        const TimedScan timed(listed(m_hosts));
        m_unscanned = allWithin(m_job.step(), scans);
        const Deadline deadline(m_job.options.stepSeconds);
        while (disk::hasUnfinishedDisks(m_hosts) && deadline.pause()) {
        }
        if (++m_scans > 1) {
            m_end.pause(); // the array shows it late: not at once again
        }
        if (m_scans == m_shownAt) {
            m_show();
            m_shownAt *= 2;
        }
        m_isScanned = true;
    }

    /** What is removed and found again gets its own names and size. Nothing of it is written back: it would
     * go to another disk than it came from. */
    void renew(const std::vector<disk::ScsiDisk>& stale)
    {
        for (const disk::ScsiDisk& disk : stale) {
            const std::optional<disk::MultipathMap> map = disk::multipathMap(disk.map);
            const std::vector<std::string> uses = usesOf({disk}, map);
            if (!uses.empty()) {
                m_job.fail("/dev/" + disk.name +
                           " is its disk now, under the names of another one that is in "
                           "use still: " +
                           listed(uses) + "; end that, and call again");
            }
            if (disk.lun() == NEVER_REMOVED) {
                m_job.fail("/dev/" + disk.name +
                           " is its disk now, under the names of another one; it has the LUN number 0 and is "
                           "never removed; map it to another number");
            }
            COMMLOG(OS_LOG_WARN, "/dev/%s stands under the names of another disk: it is found anew.",
                    disk.name.c_str());
            // Not while a path of the map is another disk: it goes without this one then.
            if (map && std::all_of(map->paths.begin(), map->paths.end(),
                                   [&](const std::string& path) { return isOneOf(stale, path); })) {
                removeMap(m_job, *map);
            }
            const std::string problem = removeDisk(m_job, disk, [&] {
                return lookAt(m_job, {disk}, m_job.step()).stale.empty()
                           ? "/dev/" + disk.name + " is another disk by now"
                           : "";
            });
            tellStep(problem.empty() ? HostEvent::RENEWED : HostEvent::REFUSED, "/dev/" + disk.name, problem);
            if (!problem.empty()) {
                m_job.fail(problem);
            }
        }
        m_isScanned = false;
    }

    [[noreturn]] void sayNothing(const Sight& sight) const
    {
        std::vector<std::string> reasons;
        for (const disk::ScsiDisk& disk : sight.silent) {
            reasons.push_back(isWithoutNode(disk)
                                  ? withoutNode(disk)
                                  : "/dev/" + disk.name + " is " + disk.state + " and does not answer");
        }
        reasons.insert(reasons.end(), m_ways.away.begin(), m_ways.away.end());
        std::copy_if(m_unscanned.begin(), m_unscanned.end(), std::back_inserter(reasons),
                     [](const std::string& reason) { return !reason.empty(); });
        m_job.fail("no disk of this host answers as it after " + std::to_string(m_job.options.findSeconds) +
                   " s" + (reasons.empty() ? "" : ": " + listed(reasons)) +
                   "; it is visible to this host, and the same call again goes on from there");
    }

    const DiskJob& m_job;
    const Ways& m_ways;
    std::vector<std::string> m_hosts; ///< that are scanned
    const std::function<void()>& m_show;
    const Deadline m_end;
    std::vector<std::string> m_unscanned; ///< why, for those of the last scan that were not
    bool m_isScanned = false;
    unsigned m_scans = 0;
    unsigned m_shownAt = 4; ///< scans that have found nothing
};

} // namespace

std::vector<disk::ScsiDisk> findDisks(const DiskJob& job, const Ways& ways, const std::function<void()>& show)
{
    return Search(job, ways, show).run();
}

} // namespace ovra::tessel

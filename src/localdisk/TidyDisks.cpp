#include "localdisk/DeadDisks.h"
#include "localdisk/Removal.h"
#include "localdisk/Whole.h"
#include "observer/Observation.h"
#include "observer/Steps.h"
#include "session/ManagerOptions.h"
#include "session/Texts.h"

#include <tessel/DeviceManager.h>
#include <tessel/HostTransaction.h>
#include <tessel/Tidy.h>

namespace ovra::tessel {
namespace {

/** The walk over the disks that this host has of an array. One use. */
class DiskTidying
{
public:
    DiskTidying(const DiskJob& job, const DiskTidyOptions& options,
                const std::function<bool(const DiskTidyFinding&)>& tell)
        : m_job(job), m_options(options), m_tell(tell)
    {
    }

    TidyResult run()
    {
        const Ways ways = waysOf(m_job, m_job.volume.id);
        if (ways.all.empty()) { // of another machine
            return m_result;
        }
        m_job.requireNoKorvex();
        const HostTransaction transaction(m_job.options.lockSeconds);
        DeadDisks disks(m_job, ways);
        for (const AmissDisk& amiss : disks.find()) {
            if (!m_result.isComplete) {
                break;
            }
            clear(disks, amiss);
        }
        return m_result;
    }

private:
    void clear(DeadDisks& disks, const AmissDisk& amiss)
    {
        DiskTidyFinding finding{{"/dev/" + amiss.disk.name, amiss.disk.address, amiss.disk.state},
                                amiss.isDead ? TidyFinding::REMOVABLE : TidyFinding::KEPT,
                                amiss.reason};
        if (amiss.isDead && !m_options.isDryRun) {
            const std::string refusal = remove(disks, amiss.disk);
            finding.verdict = refusal.empty() ? TidyFinding::REMOVED : TidyFinding::KEPT;
            finding.reason = refusal.empty() ? finding.reason : refusal;
        }
        ++(finding.verdict == TidyFinding::KEPT ? m_result.kept : m_result.removed);
        const bool goesOn = !m_tell || m_tell(finding);
        m_result.isComplete = goesOn && (m_options.most == 0 || m_result.removed < m_options.most);
    }

    /** Nothing is written back: it has nowhere to go, or would go to another disk than it came from. */
    std::string remove(DeadDisks& disks, const disk::ScsiDisk& found) const
    {
        disk::ScsiDisk disk = found;
        disk.map = disk::scsiDisk(disk.name).value_or(found).map; // it may have gone with another path
        if (const std::optional<disk::MultipathMap> map = disk::multipathMap(disk.map)) {
            std::string doubt = disks.doubtAbout(disk);
            if (!doubt.empty()) {
                return doubt;
            }
            try {
                removeMap(m_job, *map);
            } catch (const OvraAPIException&) {
                return "its map " + map->name + " stays: multipath -f " + map->name + " says why";
            }
            disk.map.clear();
        }
        std::string problem = removeDisk(m_job, disk, [&] { return disks.doubtAbout(disk); });
        tellStep(problem.empty() ? HostEvent::REMOVED : HostEvent::REFUSED, "/dev/" + disk.name, problem);
        return problem;
    }

    const DiskJob& m_job;
    const DiskTidyOptions& m_options;
    const std::function<bool(const DiskTidyFinding&)>& m_tell;
    TidyResult m_result;
};

} // namespace

TidyResult tidyDisks(CDeviceManager& manager, const std::string& hostID, const DiskTidyOptions& options,
                     const std::function<bool(const DiskTidyFinding&)>& tell)
{
    return observed("tidyDisks", manager, [&](Observation& seen) {
        seen.names(kinds::HOST, hostID);
        if (hostID.empty()) {
            throw OvraAPIException(std::string(texts::HOST_ID.textIfEmpty) + "tidyDisks");
        }
        const OptionsInForce limits(&manager);
        return whole([&] {
            const DiskJob job(manager, hostID, options.steps);
            return DiskTidying(job, options, tell).run();
        });
    });
}

} // namespace ovra::tessel

#include "localdisk/Release.h"

#include "localdisk/Removal.h"
#include "localdisk/Sight.h"
#include "localdisk/Ways.h"
#include "observer/Steps.h"
#include "session/Log.h"

#include <tessel/HostTransaction.h>

#include <algorithm>

namespace ovra::tessel {
namespace {

constexpr unsigned ROUNDS = 5;

bool hasAddress(const std::vector<disk::ScsiDisk>& disks, const std::string& address)
{
    return std::any_of(disks.begin(), disks.end(),
                       [&](const disk::ScsiDisk& disk) { return disk.address == address; });
}

/** Removes the disks of an object, and hides it. One use. */
class Release
{
public:
    Release(const DiskJob& job, const HostInitiator& initiator, bool isForced)
        : m_job(job), m_initiator(initiator), m_isForced(isForced),
          m_ways(waysOf(job, initiator, hostOf(job, initiator)))
    {
    }

    void run()
    {
        // What takes long comes before the lock: nobody's scan waits for it.
        writeBack(look(), std::chrono::seconds(m_job.options.flushSeconds));
        const HostTransaction transaction(m_job.options.lockSeconds);
        const Sight sight = look();
        writeBack(sight, m_job.step());
        remove(Uses::LOOKED_FOR, sight.ours);
        hide();
        remove(Uses::UNKNOWN, {}); // what a scan of somebody who takes no lock has brought back meanwhile
        if (const std::optional<disk::MultipathMap> map = disk::mapOfWwn(m_job.wwn)) {
            m_job.fail("the map " + map->name +
                       " stays until what uses it has ended; its paths are gone, and it "
                       "is hidden");
        }
    }

private:
    enum class Uses
    {
        LOOKED_FOR, ///< there are none, or they do not matter
        UNKNOWN
    };

    /** Every disk that is the object, or was it and is dead. */
    Sight look() const
    {
        Sight sight = lookForOurs(m_job, m_ways.all);
        if (!m_isForced) {
            std::for_each(sight.silent.begin(), sight.silent.end(),
                          [&](const disk::ScsiDisk& disk) { requireNode(disk); });
        }
        return sight;
    }

    /** One without a node cannot be asked, and is not dead. A new one's is waited for. */
    void requireNode(const disk::ScsiDisk& disk) const
    {
        const Deadline deadline(m_job.options.stepSeconds);
        while (isWithoutNode(disk)) {
            if (!deadline.pause()) {
                m_job.fail(withoutNode(disk) + "; let the host's /dev be seen here, and call again");
            }
        }
    }

    void writeBack(const Sight& sight, std::chrono::seconds limit) const
    {
        checkUnused(sight, "; nothing was changed");
        for (const disk::ScsiDisk& disk : sight.silent) { // what still waits for one cannot reach it any more
            COMMLOG(OS_LOG_WARN, "/dev/%s of %s does not answer: it is removed as it is.", disk.name.c_str(),
                    m_job.name().c_str());
        }
        tessel::writeBack(m_job, sight.ours, limit, m_isForced);
    }

    void checkUnused(const Sight& sight, const std::string& state) const
    {
        std::vector<disk::ScsiDisk> disks = sight.ours;
        disks.insert(disks.end(), sight.silent.begin(), sight.silent.end());
        const std::vector<std::string> uses = usesOf(disks, disk::mapOfWwn(m_job.wwn));
        if (uses.empty()) {
            return;
        }
        if (!m_isForced) {
            m_job.fail("it is in use: " + listed(uses) + state);
        }
        for (const std::string& use : uses) {
            COMMLOG(OS_LOG_WARN, "%s is removed while in use: %s", m_job.name().c_str(), use.c_str());
        }
    }

    /** The map and the disks, until there is none. @param written those to which was written back just now.
     */
    void remove(Uses uses, std::vector<disk::ScsiDisk> written) const
    {
        std::string stays;
        for (unsigned round = 0; round < ROUNDS; ++round) {
            const std::optional<disk::MultipathMap> map = disk::mapOfWwn(m_job.wwn);
            const Sight sight = look();
            if (!map && sight.ours.empty() && sight.silent.empty()) {
                return;
            }
            if (uses == Uses::UNKNOWN) {
                checkUnused(sight, "; another scan has found it again meanwhile; end that, and call again");
            }
            uses = Uses::UNKNOWN;
            std::vector<disk::ScsiDisk> back = sight.ours; // some did not answer before, or were removed
            back.erase(
                std::remove_if(back.begin(), back.end(),
                               [&](const disk::ScsiDisk& disk) { return hasAddress(written, disk.address); }),
                back.end());
            tessel::writeBack(m_job, back, m_job.step(), m_isForced);
            written.clear();
            if (map) {
                removeOurMap(*map, sight);
            }
            if (m_isForced && sight.ours.empty() && sight.silent.empty()) {
                return; // who uses it has it open: told when all else is done
            }
            stays.clear();
            for (const std::vector<disk::ScsiDisk>* disks : {&sight.ours, &sight.silent}) {
                for (const disk::ScsiDisk& disk : *disks) {
                    const std::string problem =
                        removeDisk(m_job, disk, [&] { return changed(disk, disks == &sight.silent); });
                    tellStep(problem.empty() ? HostEvent::REMOVED : HostEvent::REFUSED, "/dev/" + disk.name,
                             problem);
                    stays = problem.empty() ? stays : problem;
                }
            }
        }
        m_job.fail((stays.empty() ? "its disks come back as often as they are removed" : stays) +
                   "; call again to go on from there");
    }

    void removeOurMap(const disk::MultipathMap& map, const Sight& sight) const
    {
        for (const std::string& path : map.paths) {
            const bool isDead = std::any_of(sight.silent.begin(), sight.silent.end(),
                                            [&](const disk::ScsiDisk& disk) { return disk.name == path; });
            const std::string foreign = isDead ? "" : foreignPath(m_job, path);
            if (!foreign.empty()) {
                m_job.fail("the map " + map.name + " holds what is not it: " + foreign +
                           "; the map and its paths stay");
            }
        }
        try {
            removeMap(m_job, map);
            tellStep(HostEvent::REMOVED, "/dev/mapper/" + map.name);
        } catch (const OvraAPIException& problem) {
            if (!m_isForced) {
                throw;
            }
            COMMLOG(OS_LOG_WARN, "%s", problem.what()); // its paths go all the same
            removeMapLater(m_job, map);
        }
    }

    /** Why a disk may not go any more: somebody has another one at its place. */
    std::string changed(const disk::ScsiDisk& disk, bool wasSilent) const
    {
        const disk::ScsiDisk itself = disk::scsiDisk(disk.name).value_or(disk);
        Sight now = lookAt(m_job, {itself}, m_job.step());
        if (wasSilent && !now.ours.empty()) { // it has come back: what waited for it can reach it
            tessel::writeBack(m_job, now.ours, m_job.step(), m_isForced);
            now = lookAt(m_job, {itself}, m_job.step());
        }
        return now.ours.empty() && now.silent.empty() ? "/dev/" + disk.name + " is another disk by now" : "";
    }

    void hide() const
    {
        const AccessResult result =
            ensureHidden(*m_job.manager, m_job.volume, m_initiator, m_job.options.access);
        if (result.isVisible) {
            COMMLOG(
                OS_LOG_WARN,
                "%s stays visible to this host through LUN groups of others: a scan brings its disk back.",
                m_job.name().c_str());
        }
    }

    const DiskJob& m_job;
    const HostInitiator& m_initiator;
    const bool m_isForced;
    const Ways m_ways;
};

} // namespace

void releaseDisk(const DiskJob& job, const HostInitiator& initiator, bool evenInUse)
{
    Release(job, initiator, evenInUse).run();
}

} // namespace ovra::tessel

#include "localdisk/HeldDisk.h"

#include "localdisk/Finding.h"
#include "observer/Steps.h"

#include <tessel/HostTransaction.h>

namespace ovra::tessel {

HeldDisk::HeldDisk(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
                   const LocalDiskOptions& options)
    : job(manager, volume, options), initiator(host)
{
    job.requireNoKorvex();
}

void HeldDisk::attach()
{
    show();
    const Ways ways = waysOf(job, initiator, hostID);
    requireOnline(job, initiator, ways);
    proved = prove(
        job, [&] { return find(ways); }, Sizes::GROWN);
}

void HeldDisk::show()
{
    hostID = ensureVisible(*job.manager, job.volume, initiator, job.options.access).hostID;
}

std::vector<disk::ScsiDisk> HeldDisk::find(const Ways& ways)
{
    std::vector<disk::ScsiDisk> ours = lookForOurs(job, ways.all).ours;
    if (ours.size() < ways.online.size()) {
        const HostTransaction transaction(job.options.lockSeconds);
        ours = findDisks(job, ways, [this] { show(); });
    }
    return ours;
}

void HeldDisk::look(Sizes sizes)
{
    hostID = hostID.empty() ? hostOf(job, initiator) : hostID;
    const Ways ways = waysOf(job, initiator, hostID);
    proved = prove(
        job,
        [&] {
            const Sight sight = lookForOurs(job, ways.all);
            if (!sight.foreign.empty()) {
                job.fail(sight.foreign.front());
            }
            if (sight.ours.empty()) {
                job.fail("no disk of this host answers as it");
            }
            return sight.ours;
        },
        sizes);
}

void HeldDisk::tellFound(Observation& seen) const
{
    seen.names(kinds::HOST, hostID);
    seen.found(proved.path);
    tellStep(HostEvent::FOUND, proved.path);
}

} // namespace ovra::tessel

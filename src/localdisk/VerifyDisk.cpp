#include "localdisk/DiskJob.h"
#include "localdisk/Proof.h"
#include "localdisk/Sight.h"
#include "localdisk/Told.h"

#include <ovra/disk/Names.h>
#include <tessel/LocalDisk.h>

#include <climits>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace ovra::tessel {

void verifyDisk(CDeviceManager& manager, const StorageObject& volume, const std::string& device,
                const LocalDiskOptions& options)
{
    told("verifyDisk", manager, volume, [&](Observation& seen) {
        seen.found(device);
        const DiskJob job(manager, volume, options);
        char real[PATH_MAX];
        const std::string node =
            realpath(device.c_str(), real) != nullptr ? disk::lastName(real) : std::string();
        const std::optional<disk::MultipathMap> map = disk::multipathMap(node);
        const std::optional<disk::ScsiDisk> single = disk::scsiDisk(node);
        if (!map && !single) {
            job.fail(device + " is no SCSI disk and no multipath map of this host");
        }
        std::vector<disk::ScsiDisk> paths;
        for (const std::string& name : map ? map->paths : std::vector<std::string>{node}) {
            const std::string foreign = foreignPath(job, name);
            if (!foreign.empty()) {
                job.fail(std::string(device).append(": ").append(foreign));
            }
            const std::optional<disk::ScsiDisk> path = disk::scsiDisk(name);
            if (path && path->isRunning()) {
                paths.push_back(*path);
            }
        }
        if (paths.empty()) {
            job.fail(device + " has no path that works");
        }
        const ProvedDisk proved = prove(
            job, [&] { return paths; }, Sizes::PROVED);
        if (single && !single->map.empty()) {
            job.fail(device + " is one path of " + proved.path + ": use that");
        }
    });
}

} // namespace ovra::tessel

#ifndef LOCALDISK_HELDDISK_H
#define LOCALDISK_HELDDISK_H

#include "localdisk/DiskJob.h"
#include "localdisk/Proof.h"
#include "localdisk/Told.h"
#include "localdisk/Ways.h"

#include <tessel/LocalDisk.h>

#include <string>
#include <vector>

namespace ovra::tessel {

/** One object of the array at this host: how its disk is found, and what was proved of it. */
struct HeldDisk
{
    HeldDisk(CDeviceManager& manager, const StorageObject& volume, const HostInitiator& host,
             const LocalDiskOptions& options);

    /** Shows the object to this host, and finds its disk. */
    void attach();
    /** Proves what is there. */
    void look(Sizes sizes);
    void tellFound(Observation& seen) const;

    template <class Steps>
    void told(const char* call, const Steps& steps) const
    {
        tessel::told(call, *job.manager, job.volume, [&](Observation& seen) {
            seen.names(kinds::INITIATOR, initiator.id);
            seen.names(kinds::HOST, hostID);
            steps(seen);
        });
    }

    DiskJob job;
    HostInitiator initiator;
    std::string hostID;
    ProvedDisk proved;
    bool isHeld = true; ///< the destructor has something to release

private:
    void show();
    /** What is there; scans where a way has none. */
    std::vector<disk::ScsiDisk> find(const Ways& ways);
};

} // namespace ovra::tessel

#endif

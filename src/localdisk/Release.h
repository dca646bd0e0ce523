#ifndef LOCALDISK_RELEASE_H
#define LOCALDISK_RELEASE_H

#include "localdisk/DiskJob.h"

namespace ovra::tessel {

/** Takes what this host has of an object away, and hides it from the host. Throws as LocalDisk::release. */
void releaseDisk(const DiskJob& job, const HostInitiator& initiator, bool evenInUse);

} // namespace ovra::tessel

#endif

#ifndef HOST_HOSTRESCAN_H
#define HOST_HOSTRESCAN_H

#include "host/Korvex.h"

namespace ovra::tessel {

/**
 * Makes the kernel look for new disks on all SCSI buses, by the Korvex product's command or the system's
 * script, and waits, at most 25 minutes, until the temporary devices of the former are gone. The script
 * removes disks that are gone only where no other disk can go with them.
 */
void rescanHost(disk::Presence korvex);

} // namespace ovra::tessel

#endif

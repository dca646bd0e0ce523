#ifndef HOST_HOSTRESCAN_H
#define HOST_HOSTRESCAN_H

namespace ovra::tessel {

/** Looks for the Korvex multipath product's rescan command. */
bool isKorvexFound();

/**
 * Makes the kernel look for new disks on all SCSI buses, by the Korvex product's command or the system's
 * script, and waits, at most 25 minutes, until the temporary devices of the former are gone.
 */
void rescanHost(bool withKorvex);

} // namespace ovra::tessel

#endif

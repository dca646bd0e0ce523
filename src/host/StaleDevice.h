#ifndef HOST_STALEDEVICE_H
#define HOST_STALEDEVICE_H

#include <string>

namespace ovra::tessel {

class InterfaceRecord;

/** Closes a step of the search in the run log. */
extern const char* const SEARCH_SEPARATOR;

enum class Renewal
{
    DONE,
    NO_DEVICE, ///< the SCSI disk behind the device is not known
    NO_LISTING ///< lsscsi could not be started
};

/**
 * A device with the wanted WWN may stand under the names of the disk that was there before. Removes it and
 * has the kernel find it again, so that it gets its own names; waits, at most ten seconds, for these. LUN 0
 * is never removed.
 */
Renewal renewStaleDevice(const InterfaceRecord& record, const std::string& path, const std::string& wwn);

} // namespace ovra::tessel

#endif

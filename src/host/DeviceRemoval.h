#ifndef HOST_DEVICEREMOVAL_H
#define HOST_DEVICEREMOVAL_H

#include "host/DiskIdentity.h"

#include <functional>
#include <string>

namespace ovra::tessel {

/**
 * What is due before a disk is removed: says in the run log what still uses it, writes its data back, and, as
 * the last thing, asks the disk once more who it is.
 * @param path by which the disk is opened
 * @param device its name, e.g. /dev/sdc
 * @return false when it is not the wanted one: it has become another disk meanwhile, or does not answer.
 */
bool isReadyForRemoval(CDiskScannerHandlerImpl& scanner, const std::string& path, const std::string& device,
                       const std::function<bool(const DiskIdentity&)>& isWanted);

} // namespace ovra::tessel

#endif

#ifndef HOST_DETACH_H
#define HOST_DETACH_H

#include "storage/DiskKinds.h"

#include <string>

class CDeviceManagerImpl;

namespace ovra::tessel {

/** Takes a LUN or snapshot, by its kind, from an initiator's host, or from every host. Always 0. */
template <class Kind>
int detach(CDeviceManagerImpl* deviceManager, const std::string& id, const std::string& initiatorId);

extern template int detach<LunKind>(CDeviceManagerImpl*, const std::string&, const std::string&);
extern template int detach<SnapshotKind>(CDeviceManagerImpl*, const std::string&, const std::string&);

} // namespace ovra::tessel

#endif

#ifndef HOST_SCANNEDOBJECT_H
#define HOST_SCANNEDOBJECT_H

#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"
#include "storage/DiskKinds.h"

#include <optional>
#include <string>

namespace ovra::tessel {

/** Reads the object whose device is wanted; ends the operation, without an exception, when it cannot. */
template <class Kind>
std::optional<typename Kind::Object> readScanned(Operation& op, CDeviceManagerImpl* deviceManager,
                                                 const std::string& id)
{
    if (op.closeUnless(!id.empty(), Kind::ID_EMPTY)) {
        return std::nullopt;
    }
    CHandler* const handler = deviceManager == nullptr ? nullptr : deviceManager->getHandler(Kind::HANDLER);
    if (handler == nullptr) {
        op.closeUnless(false, deviceManager == nullptr ? texts::NO_DEVICE_MANAGER : Kind::NO_HANDLER);
        return std::nullopt;
    }
    return (static_cast<typename Kind::Handler&>(*handler).*Kind::GET)(id);
}

} // namespace ovra::tessel

#endif

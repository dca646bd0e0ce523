#ifndef HOST_SCANNEDOBJECT_H
#define HOST_SCANNEDOBJECT_H

#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"
#include "session/Texts.h"

#include <tessel/Lun.h>
#include <tessel/Snapshot.h>

#include <optional>
#include <string>

namespace ovra::tessel {

/** What scanning differs in between LUNs and snapshots. */
struct ScannedLun
{
    static constexpr HANDLERTYPE HANDLER = LUN_HANDLER;
    static constexpr const char* ID_EMPTY = texts::LUN_ID_EMPTY;
    static constexpr const char* NO_HANDLER = "get lunHandler fail! ";
    static constexpr const char* LABEL = "LUN";
    static constexpr const char* NOT_FOUND = "lun path is NULL.";

    static LunMO read(CHandler& handler, const std::string& id)
    {
        return static_cast<CLunHandler&>(handler).getLun(id);
    }
};

struct ScannedSnapshot
{
    static constexpr HANDLERTYPE HANDLER = SNAPSHOT_HANDLER;
    static constexpr const char* ID_EMPTY = texts::SNAPSHOT_ID_EMPTY;
    static constexpr const char* NO_HANDLER = "get snapshotHandler fail! ";
    static constexpr const char* LABEL = "snapshot";
    static constexpr const char* NOT_FOUND = "snapshot path is NULL.";

    static SnapshotMO read(CHandler& handler, const std::string& id)
    {
        return static_cast<CSnapshotHandler&>(handler).getSnapshot(id);
    }
};

/** Reads the object whose device is wanted; ends the operation, without an exception, when it cannot. */
template <class Object>
auto readScanned(Operation& op, CDeviceManagerImpl* deviceManager, const std::string& id)
    -> std::optional<decltype(Object::read(std::declval<CHandler&>(), id))>
{
    if (op.closeUnless(!id.empty(), Object::ID_EMPTY)) {
        return std::nullopt;
    }
    CHandler* const handler = deviceManager == nullptr ? nullptr : deviceManager->getHandler(Object::HANDLER);
    if (handler == nullptr) {
        op.closeUnless(false, deviceManager == nullptr ? texts::NO_DEVICE_MANAGER : Object::NO_HANDLER);
        return std::nullopt;
    }
    return Object::read(*handler, id);
}

} // namespace ovra::tessel

#endif

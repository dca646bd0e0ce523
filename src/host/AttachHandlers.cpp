#include "host/AttachHandlers.h"

#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ovra::tessel {

namespace {

// No map, which would be destroyed while threads still attach when the process ends.
constexpr std::pair<HANDLERTYPE, const char*> MISSING[] = {
    {LUN_HANDLER, "get LunHandler fail! "},
    {LUNGROUP_HANDLER, "get LunGroupHandler fail! "},
    {HOST_HANDLER, "get HostHandler fail! "},
    {HOSTGROUP_HANDLER, "get HostGroupHandler fail! "},
    {MAPPINGVIEW_HANDLER, "get MappingViewHandler fail! "},
    {ISCSIINITIATOR_HANDLER, "get IscsiInitiatorHandler fail! "},
    {SNAPSHOT_HANDLER, "get SnapshotHandler fail! "},
};

} // namespace

void AttachHandlers::fetch(Operation& op, CDeviceManagerImpl& deviceManager, HANDLERTYPE type)
{
    CHandler* const handler = deviceManager.getHandler(type);
    const auto* const missing = std::find_if(std::begin(MISSING), std::end(MISSING),
                                             [type](const auto& text) { return text.first == type; });
    op.require(handler != nullptr, missing->second);
    m_handlers[type] = handler;
}

} // namespace ovra::tessel

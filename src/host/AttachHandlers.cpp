#include "host/AttachHandlers.h"

#include "session/DeviceManagerImpl.h"
#include "session/Operation.h"

namespace ovra::tessel {

namespace {

const std::map<HANDLERTYPE, const char*> MISSING = {
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
    op.require(handler != nullptr, MISSING.at(type));
    m_handlers[type] = handler;
}

} // namespace ovra::tessel

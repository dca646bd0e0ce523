#ifndef HOST_ATTACHHANDLERS_H
#define HOST_ATTACHHANDLERS_H

#include <tessel/Host.h>
#include <tessel/HostGroup.h>
#include <tessel/IscsiInitiator.h>
#include <tessel/LunGroup.h>
#include <tessel/MappingView.h>

#include <map>

class CDeviceManagerImpl;

namespace ovra::tessel {

class Operation;

/** The handlers that one attach or detach works with, fetched from the device manager in a given order. */
class AttachHandlers
{
public:
    /** Ends the operation when the device manager has no such handler. */
    template <size_t N>
    AttachHandlers(Operation& op, CDeviceManagerImpl& deviceManager, const HANDLERTYPE (&order)[N])
    {
        for (const HANDLERTYPE type : order) {
            fetch(op, deviceManager, type);
        }
    }

    /** The handler of LUNs or of snapshots. */
    template <class Kind>
    typename Kind::Handler& of() const
    {
        return as<typename Kind::Handler>(Kind::HANDLER);
    }
    CLunGroupHandler& lunGroup() const { return as<CLunGroupHandler>(LUNGROUP_HANDLER); }
    CHostHandler& host() const { return as<CHostHandler>(HOST_HANDLER); }
    CHostGroupHandler& hostGroup() const { return as<CHostGroupHandler>(HOSTGROUP_HANDLER); }
    CMappingViewHandler& mappingView() const { return as<CMappingViewHandler>(MAPPINGVIEW_HANDLER); }
    CIscsiInitiatorHandler& initiator() const { return as<CIscsiInitiatorHandler>(ISCSIINITIATOR_HANDLER); }

private:
    void fetch(Operation& op, CDeviceManagerImpl& deviceManager, HANDLERTYPE type);

    template <class Interface>
    Interface& as(HANDLERTYPE type) const
    {
        return *static_cast<Interface*>(m_handlers.at(type));
    }

    std::map<HANDLERTYPE, CHandler*> m_handlers;
};

} // namespace ovra::tessel

#endif

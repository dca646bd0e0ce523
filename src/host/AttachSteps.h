#ifndef HOST_ATTACHSTEPS_H
#define HOST_ATTACHSTEPS_H

#include "host/AttachHandlers.h"
#include "session/Operation.h"
#include "storage/DiskKinds.h"

#include <functional>
#include <string>

namespace ovra::tessel {

// What an attach and a detach have in common.

constexpr int DONE = 0;                      ///< the result of both, also where there was nothing to do
constexpr unsigned long WHOLE_RANGE = 65535; // a page that no group outgrows

/** The orders in which the handlers are fetched are on purpose: the first one missing is the one named. */
template <class Kind>
struct Order;

template <>
struct Order<LunKind>
{
    static constexpr HANDLERTYPE ATTACH[] = {LUN_HANDLER,  LUNGROUP_HANDLER,  ISCSIINITIATOR_HANDLER,
                                             HOST_HANDLER, HOSTGROUP_HANDLER, MAPPINGVIEW_HANDLER};
    static constexpr HANDLERTYPE DETACH[] = {LUN_HANDLER,  HOSTGROUP_HANDLER,   LUNGROUP_HANDLER,
                                             HOST_HANDLER, MAPPINGVIEW_HANDLER, ISCSIINITIATOR_HANDLER};
};

template <>
struct Order<SnapshotKind>
{
    static constexpr HANDLERTYPE ATTACH[] = {SNAPSHOT_HANDLER, LUNGROUP_HANDLER,    ISCSIINITIATOR_HANDLER,
                                             HOST_HANDLER,     MAPPINGVIEW_HANDLER, HOSTGROUP_HANDLER};
    static constexpr HANDLERTYPE DETACH[] = {MAPPINGVIEW_HANDLER, SNAPSHOT_HANDLER,       HOSTGROUP_HANDLER,
                                             HOST_HANDLER,        ISCSIINITIATOR_HANDLER, LUNGROUP_HANDLER};
};

/** Asks for one object among those of a host or LUN group. */
template <class Kind>
typename Kind::Query only(const std::string& id)
{
    typename Kind::Object filter;
    filter.ID = id;
    return {filter, 0, WHOLE_RANGE};
}

template <class Kind>
void checkArguments(Operation& op, const std::string& id, const std::string& initiatorId,
                    const CDeviceManagerImpl* deviceManager)
{
    op.requireId(id, Kind::ID);
    op.requireId(initiatorId, texts::ISCSI_INITIATOR_ID);
    op.require(deviceManager != nullptr, texts::NO_DEVICE_MANAGER);
}

template <class Kind>
auto readObject(Operation& op, const AttachHandlers& handlers, const std::string& id)
{
    auto object = std::invoke(Kind::GET, handlers.of<Kind>(), id);
    op.require(!object.ID.empty(), Kind::NOT_VALID);
    return object;
}

inline IscsiInitiatorMO readInitiator(Operation& op, const AttachHandlers& handlers, const std::string& id)
{
    IscsiInitiatorMO initiator = handlers.initiator().getIscsiInitiator(id);
    op.require(!initiator.ID.empty(), "The iscsiInitiatorID is not valid! ");
    return initiator;
}

} // namespace ovra::tessel

#endif

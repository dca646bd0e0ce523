#include "host/DiskAttachHandlerImpl.h"

#include "host/AttachHandlers.h"
#include "storage/DiskKinds.h"

#include <ctime>
#include <cxxabi.h>

using namespace ovra::tessel;

namespace {

constexpr const char* EVERY_HOST = "0";
constexpr const char* INITIATOR_NOT_VALID = "The iscsiInitiatorID is not valid! ";
constexpr int ALREADY_MAPPED = 1;
constexpr int DONE = 0;
constexpr unsigned long WHOLE_RANGE = 65535; // a page that no group outgrows

/** The orders are the callers' to rely on: the first handler that is missing is the one named. */
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
    op.requireId(id, Kind::ID_EMPTY);
    op.requireId(initiatorId, texts::ISCSI_INITIATOR_ID_EMPTY);
    op.require(deviceManager != nullptr, texts::NO_DEVICE_MANAGER);
}

template <class Kind>
auto readObject(Operation& op, const AttachHandlers& handlers, const std::string& id)
{
    auto object = (handlers.of<Kind>().*Kind::GET)(id);
    op.require(!object.ID.empty(), Kind::NOT_VALID);
    return object;
}

IscsiInitiatorMO readInitiator(Operation& op, const AttachHandlers& handlers, const std::string& id)
{
    IscsiInitiatorMO initiator = handlers.initiator().getIscsiInitiator(id);
    op.require(!initiator.ID.empty(), INITIATOR_NOT_VALID);
    return initiator;
}

/** The initiator's host; one is made for an initiator that has none. */
HostMO hostOf(const AttachHandlers& handlers, const IscsiInitiatorMO& initiator, const std::string& newName,
              const std::string& newIp)
{
    if (!initiator.PARENTID.empty()) {
        return handlers.host().getHost(initiator.PARENTID);
    }
    HostMO host;
    host.NAME = newName;
    host.IP = newIp;
    host = handlers.host().createHost(host);
    handlers.initiator().addIscsiInitiatorToHost(initiator.ID, host.ID);
    return host;
}

template <class Kind>
int attach(CDiskAttachHandlerImpl& self, CDeviceManagerImpl* deviceManager, const std::string& id,
           const std::string& initiatorId, const std::string& hostIp)
{
    return Operation::run(Kind::ATTACH_NAME, deviceManager, [&](Operation& op) {
        checkArguments<Kind>(op, id, initiatorId, deviceManager);
        const AttachHandlers handlers(op, *deviceManager, Order<Kind>::ATTACH);
        const auto object = readObject<Kind>(op, handlers, id);
        const IscsiInitiatorMO initiator = readInitiator(op, handlers, initiatorId);
        const HostMO host = hostOf(handlers, initiator, self.getBuildedName("host"), hostIp);

        typename Kind::Query wanted = only<Kind>(id);
        if (!(handlers.of<Kind>().*Kind::OF_HOST)(host.ID, wanted).empty()) {
            op.close("The MappingView was already existed! ", RESULT_BAD_ARGUMENT);
            return ALREADY_MAPPED;
        }
        LunGroupMO lunGroup;
        lunGroup.NAME = self.getBuildedName("lungroup");
        lunGroup = handlers.lunGroup().createLunGroup(lunGroup);
        (handlers.lunGroup().*Kind::ADD)(object.ID, lunGroup.ID);

        HostGroupMO hostGroup;
        hostGroup.NAME = self.getBuildedName("hostgroup");
        hostGroup = handlers.hostGroup().createHostGroup(hostGroup);
        handlers.hostGroup().addHostToHostGroup(host.ID, hostGroup.ID);

        MappingViewMO view;
        view.NAME = self.getBuildedName("mappingview");
        view = handlers.mappingView().createMappingView(view);
        self.addMappingView(lunGroup.ID, hostGroup.ID, view.ID, &handlers.mappingView(), op.name());
        return DONE;
    });
}

/** Removes the object from the LUN group; true when the group is empty then. */
template <class Kind>
bool removeFromLunGroup(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
{
    (handlers.lunGroup().*Kind::REMOVE)(id, lunGroupId);
    return handlers.lunGroup().getObjNOFromLunGroup(lunGroupId) == 0;
}

/** Takes the object out of the view's LUN group, and the group away when that empties it; how often it was
 * there. */
template <class Kind>
int detachFromView(const AttachHandlers& handlers, const std::string& id, const std::string& viewId)
{
    const LunGroupMO lunGroup = handlers.lunGroup().getLunGroupByMappingView(viewId);
    if (lunGroup.ID.empty()) {
        return 0;
    }
    int matches = 0;
    typename Kind::Query wanted = only<Kind>(id);
    for (const auto& member : (handlers.of<Kind>().*Kind::OF_LUNGROUP)(lunGroup.ID, wanted)) {
        if (member.ID != id) {
            continue;
        }
        ++matches;
        if (removeFromLunGroup<Kind>(handlers, id, lunGroup.ID)) {
            handlers.mappingView().removeLunGroupFromMappingView(lunGroup.ID, viewId);
            handlers.lunGroup().deleteLunGroup(lunGroup.ID);
        }
    }
    return matches;
}

template <class Kind>
void detachFromHost(Operation& op, const AttachHandlers& handlers, const std::string& id,
                    const std::string& initiatorId)
{
    const IscsiInitiatorMO initiator = readInitiator(op, handlers, initiatorId);
    if (initiator.PARENTID.empty()) {
        op.close("Host was not existed! ", RESULT_BAD_ARGUMENT);
        return;
    }
    const HostMO host = handlers.host().getHost(initiator.PARENTID);
    int matches = 0;
    HostGroupQuery allGroups;
    for (const HostGroupMO& hostGroup : handlers.hostGroup().getHostGroupByHost(host.ID, allGroups)) {
        MappingViewQuery allViews;
        for (const MappingViewMO& view :
             handlers.mappingView().getMappingViewByHostGroup(hostGroup.ID, allViews)) {
            matches += detachFromView<Kind>(handlers, id, view.ID);
        }
    }
    if (matches == 0) {
        op.close("MappingView was not existed! ", RESULT_BAD_ARGUMENT);
    }
}

template <class Kind>
void detachEverywhere(Operation& op, const AttachHandlers& handlers, const std::string& id)
{
    LunGroupQuery allGroups;
    const auto lunGroups = (handlers.lunGroup().*Kind::LUNGROUPS)(id, allGroups);
    if (lunGroups.empty()) {
        op.close("LunGroup do not exist! ", RESULT_BAD_ARGUMENT);
        return;
    }
    for (const LunGroupMO& lunGroup : lunGroups) {
        if (!removeFromLunGroup<Kind>(handlers, id, lunGroup.ID)) {
            continue;
        }
        if (lunGroup.ISADD2MAPPINGVIEW != 0) { // unknown counts as yes
            MappingViewQuery all;
            for (const auto& view : handlers.mappingView().getMappingViewByLunGroup(lunGroup.ID, all)) {
                handlers.mappingView().removeLunGroupFromMappingView(lunGroup.ID, view.ID);
            }
        }
        handlers.lunGroup().deleteLunGroup(lunGroup.ID);
    }
}

template <class Kind>
int detach(CDeviceManagerImpl* deviceManager, const std::string& id, const std::string& initiatorId)
{
    return Operation::run(Kind::DETACH_NAME, deviceManager, [&](Operation& op) {
        checkArguments<Kind>(op, id, initiatorId, deviceManager);
        const AttachHandlers handlers(op, *deviceManager, Order<Kind>::DETACH);
        readObject<Kind>(op, handlers, id);
        if (initiatorId == EVERY_HOST) {
            detachEverywhere<Kind>(op, handlers, id);
        } else {
            detachFromHost<Kind>(op, handlers, id, initiatorId);
        }
        return DONE;
    });
}

} // namespace

int CDiskAttachHandlerImpl::attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                                            const std::string& hostIP)
{
    return attach<LunKind>(*this, m_pDeviceManager, lunID, iscsiInitiatorID, hostIP);
}

int CDiskAttachHandlerImpl::detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID)
{
    return detach<LunKind>(m_pDeviceManager, lunID, iscsiInitiatorID);
}

int CDiskAttachHandlerImpl::attachSnapshotToHost(const std::string& snapshotID,
                                                 const std::string& iscsiInitiatorID,
                                                 const std::string& hostIP)
{
    return attach<SnapshotKind>(*this, m_pDeviceManager, snapshotID, iscsiInitiatorID, hostIP);
}

int CDiskAttachHandlerImpl::detachSnapshotFromHost(const std::string& snapshotID,
                                                   const std::string& iscsiInitiatorID)
{
    return detach<SnapshotKind>(m_pDeviceManager, snapshotID, iscsiInitiatorID);
}

std::string CDiskAttachHandlerImpl::getBuildedName(const std::string& prefix)
{
    return prefix + "_" + std::to_string(time(nullptr));
}

void CDiskAttachHandlerImpl::addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                                            const std::string& mappingViewID,
                                            CMappingViewHandler* mappingViewHandler,
                                            const std::string& callerName)
{
    try {
        mappingViewHandler->addHostGroupToMappingView(hostGroupID, mappingViewID);
        mappingViewHandler->addLunGroupToMappingView(lunGroupID, mappingViewID);
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being cancelled: nothing may stop that
    } catch (...) {
        COMMLOG(OS_LOG_ERROR, "MappingView add HostGroup or add LunGroup fail! %s", callerName.c_str());
        mappingViewHandler->deleteMappingView(mappingViewID);
    }
}

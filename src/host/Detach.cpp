#include "host/Detach.h"

#include "host/AttachSteps.h"

#include <functional>

namespace ovra::tessel {

namespace {

constexpr const char* EVERY_HOST = "0"; // docs/oddities.md#initiator-0

/** Removes the object from the LUN group; true when the group is empty then. */
template <class Kind>
bool removeFromLunGroup(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
{
    std::invoke(Kind::REMOVE, handlers.lunGroup(), id, lunGroupId);
    return handlers.lunGroup().getObjNOFromLunGroup(lunGroupId) == 0;
}

/** Takes the object out of the view's LUN group, and an emptied group away; how often it was there. */
template <class Kind>
int detachFromView(const AttachHandlers& handlers, const std::string& id, const std::string& viewId)
{
    const LunGroupMO lunGroup = handlers.lunGroup().getLunGroupByMappingView(viewId);
    if (lunGroup.ID.empty()) {
        return 0;
    }
    int matches = 0;
    typename Kind::Query wanted = only<Kind>(id);
    for (const auto& member : std::invoke(Kind::OF_LUNGROUP, handlers.of<Kind>(), lunGroup.ID, wanted)) {
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

/** Leaves the view, the host group and the host: docs/oddities.md#what-a-detach-leaves */
template <class Kind>
void detachFromHost(Operation& op, const AttachHandlers& handlers, const std::string& id,
                    const std::string& initiatorId)
{
    const IscsiInitiatorMO initiator = readInitiator(op, handlers, initiatorId);
    if (initiator.PARENTID.empty()) {
        op.close("Host was not existed! ", RESULT_BAD_ARGUMENT);
        return;
    }
    op.names(kinds::HOST, initiator.PARENTID);
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
    const auto lunGroups = std::invoke(Kind::LUNGROUPS, handlers.lunGroup(), id, allGroups);
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

} // namespace

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

template int detach<LunKind>(CDeviceManagerImpl*, const std::string&, const std::string&);
template int detach<SnapshotKind>(CDeviceManagerImpl*, const std::string&, const std::string&);

} // namespace ovra::tessel

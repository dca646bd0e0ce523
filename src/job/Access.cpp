#include "job/Showing.h"
#include "observer/Observation.h"
#include "session/LastFailure.h"
#include "session/ManagerOptions.h"

#include <tessel/Access.h>
#include <tessel/DeviceManager.h>

namespace ovra::tessel {
namespace {

void checkArguments(const StorageObject& object, const HostInitiator& initiator, const std::string& operation)
{
    if (object.type != MO_LUN && object.type != MO_SNAPSHOT) {
        throw notedFailure(FailureKind::ARGUMENT, "the object is no LUN and no snapshot! " + operation);
    }
    if (object.id.empty()) {
        throw notedFailure(FailureKind::ARGUMENT, "the ID of the object is empty! " + operation);
    }
    if (initiator.id.empty()) {
        throw notedFailure(FailureKind::ARGUMENT, "the ID of the initiator is empty! " + operation);
    }
}

/** Takes the object out of a LUN group and reads back whether it left; removing tells no failure. */
void takeOut(const AccessMap& map, const StorageObject& object, const LunGroupMO& group,
             const AccessOptions& options, AccessResult& result)
{
    const LunGroups groups = map.array().lunGroups();
    Tries tries(options);
    do {
        if (object.type == MO_LUN) {
            groups->removeLunFromLunGroup(object.id, group.ID);
        } else {
            groups->removeSnapshotFromLunGroup(object.id, group.ID);
        }
        if (!hasId(map.lunGroupsNamed(group.NAME), group.ID)) {
            result.leftFrom.push_back(named(MO_LUNGROUP, group));
            return;
        }
    } while (tries.another());
    throw OvraAPIException("the object stays in the LUN group " + group.NAME +
                           "; the run log says why! ensureHidden");
}

/** What both calls are around their own steps. */
template <class Steps>
AccessResult changing(const char* call, CDeviceManager& manager, const StorageObject& object,
                      const HostInitiator& initiator, const AccessOptions& options, const Steps& steps)
{
    return calling(FailureKind::REFUSED, [&] {
        const OptionsInForce limits(&manager);
        return observed(call, manager, [&](Observation& seen) {
            seen.setChange();
            seen.names(object, initiator);
            checkArguments(object, initiator, call);
            const AccessMap map(manager, object, initiator, options);
            return steps(map);
        });
    });
}

AccessResult hide(const AccessMap& map, const StorageObject& object, const AccessOptions& options)
{
    AccessResult result;
    result.hostID = map.hostID();
    if (result.hostID.empty()) {
        return result;
    }
    const AccessNames names = AccessNames::ofHost(result.hostID);
    const auto takeOutUnless = [&](const std::vector<AccessPath>& reasons, const LunGroupMO& group) {
        if (reasons.empty() || options.evenThroughOthers) {
            takeOut(map, object, group, options, result);
        } else {
            result.others.insert(result.others.end(), reasons.begin(), reasons.end());
        }
    };
    for (const LunGroupMO& group : map.lunGroupsNamed(names.at(0))) {
        takeOutUnless(map.pathsToOthers(group, names), group);
    }
    result.isVisible = map.isVisible(result.hostID);
    if (!result.isVisible) {
        return result;
    }
    // Rare: a LUN group of the host's own with a suffix, or groups of others.
    for (const LunGroupMO& group : map.lunGroups()) {
        if (names.indexOf(group.NAME) == 0) {
            continue;
        }
        const bool isOwn = names.has(group.NAME);
        const std::vector<AccessPath> paths =
            isOwn ? map.pathsToOthers(group, names) : map.paths(group, result.hostID);
        if (isOwn || !paths.empty()) {
            takeOutUnless(paths, group);
        }
    }
    result.isVisible = map.isVisible(result.hostID);
    return result;
}

} // namespace

AccessResult ensureVisible(CDeviceManager& manager, const StorageObject& object,
                           const HostInitiator& initiator, const AccessOptions& options)
{
    return changing("ensureVisible", manager, object, initiator, options,
                    [&](const AccessMap& map) { return Showing(map, object, initiator, options).run(); });
}

AccessResult ensureHidden(CDeviceManager& manager, const StorageObject& object,
                          const HostInitiator& initiator, const AccessOptions& options)
{
    return changing("ensureHidden", manager, object, initiator, options,
                    [&](const AccessMap& map) { return hide(map, object, options); });
}

} // namespace ovra::tessel

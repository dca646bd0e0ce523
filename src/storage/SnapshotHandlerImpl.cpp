#include "storage/SnapshotHandlerImpl.h"

#include "session/Texts.h"
#include "storage/StorageFields.h"

using namespace ovra::tessel;

SnapshotMO CSnapshotHandlerImpl::getSnapshot(const std::string& snapshotID)
{
    // Capitals here, not in the search: docs/oddities.md#snapshot-capitals
    return readById<SnapshotMO>("getSnapshot", "/SNAPSHOT/", snapshotID, texts::SNAPSHOT_ID);
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByLunGroup(const std::string& lunGroupID,
                                                                    SnapshotQuery& query)
{
    return run("getSnapshotByLunGroup", [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        return getSnapshotByCondition(lunGroupID, MO_LUNGROUP, query, op.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByHost(const std::string& hostID,
                                                                SnapshotQuery& query)
{
    return run("getSnapshotByHost", [&](Operation& op) {
        op.requireId(hostID, texts::HOST_ID);
        return getSnapshotByCondition(hostID, MO_HOST, query, op.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByCondition(const std::string& objID, MOType objType,
                                                                     SnapshotQuery& query,
                                                                     const std::string& interfaceName)
{
    // docs/oddities.md#recorded-as-the-caller
    const Frame frame =
        Frame(interfaceName).loggedAs("getSnapshotByCondition").observedAs("getSnapshotByCondition");
    return run(frame, [&](Operation& op) {
        return list(op, objType, objID, query, &CSnapshotHandler::getSnapshot);
    });
}

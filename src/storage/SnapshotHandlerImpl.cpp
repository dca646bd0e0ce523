#include "storage/SnapshotHandlerImpl.h"

#include "session/Operation.h"
#include "session/Texts.h"
#include "session/Url.h"
#include "storage/SnapshotFields.h"

using namespace ovra::tessel;

SnapshotMO CSnapshotHandlerImpl::getSnapshot(const std::string& snapshotID)
{
    return Operation::run("getSnapshot", m_pDeviceManager, [&](Operation& op) {
        op.require(!snapshotID.empty(), texts::SNAPSHOT_ID_EMPTY);
        return op.get("/SNAPSHOT/" + urlValue(snapshotID))
            .read<SnapshotMO>(); // capitals here, not in the search
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByLunGroup(const std::string& lunGroupID,
                                                                    SnapshotQuery& query)
{
    return Operation::run("getSnapshotByLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        return getSnapshotByCondition(lunGroupID, MO_LUNGROUP, query, op.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByHost(const std::string& hostID,
                                                                SnapshotQuery& query)
{
    return Operation::run("getSnapshotByHost", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostID.empty(), texts::HOST_ID_EMPTY);
        return getSnapshotByCondition(hostID, MO_HOST, query, op.name());
    });
}

std::vector<SnapshotMO> CSnapshotHandlerImpl::getSnapshotByCondition(const std::string& objID, MOType objType,
                                                                     SnapshotQuery& query,
                                                                     const std::string& interfaceName)
{
    // Recorded under the operation that it works for.
    const Frame frame = Frame(interfaceName).loggedAs("getSnapshotByCondition");
    return Operation::run(frame, m_pDeviceManager, [&](Operation& op) {
        const std::string filter =
            filterOf(query.filter, &SnapshotMO::ID, &SnapshotMO::NAME, &SnapshotMO::PARENTID,
                     &SnapshotMO::RUNNINGSTATUS, &SnapshotMO::HEALTHSTATUS);
        return op
            .get("/snapshot/associate?" + filter + associationOf(MO_SNAPSHOT, objType, objID) +
                 rangeOf(query.start, query.count, "&"))
            .readEach([&](const std::string& id) { return getSnapshot(id); });
    });
}

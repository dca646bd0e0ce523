#include "storage/LunGroupHandlerImpl.h"

#include "session/Retry.h"
#include "session/Texts.h"
#include "storage/DiskKinds.h"
#include "storage/StorageFields.h"

using namespace ovra::tessel;

namespace {

constexpr const char* RETRY_REMOVAL = "retry removeObjFromLunGroup!";

} // namespace

LunGroupMO CLunGroupHandlerImpl::createLunGroup(LunGroupMO& lunGroup)
{
    return run("createLunGroup", [&](Operation& op) {
        op.addIfSet("ID", lunGroup.ID);
        op.add("TYPE", int{MO_LUNGROUP});
        op.require(!lunGroup.NAME.empty(), "LunGroup name is empty! ");
        op.add("NAME", lunGroup.NAME);
        op.addIfSet("DESCRIPTION", lunGroup.DESCRIPTION);
        if (lunGroup.APPTYPE == LunGroupMO().APPTYPE) {
            lunGroup.APPTYPE = 0; // in the caller's record too: docs/oddities.md#apptype
        }
        op.add("APPTYPE", int{lunGroup.APPTYPE});
        op.add("GROUPTYPE", 0UL);                          // docs/oddities.md#grouptype
        const std::string id = op.post("/lungroup/").id(); // docs/oddities.md#lungroup-slash
        return retryWhile({ARRAY_NOT_READY, ARRAY_LUN_GROUP_NOT_READY}, "retry get lun group!",
                          [&] { return getLunGroup(id); });
    });
}

void CLunGroupHandlerImpl::deleteLunGroup(const std::string& lunGroupID)
{
    // docs/oddities.md#closing-line
    deleteById(Frame("deleteLunGroup").closingAsEntered(), "/lungroup/", lunGroupID, texts::LUNGROUP_ID);
}

LunGroupMO CLunGroupHandlerImpl::getLunGroup(const std::string& lunGroupID)
{
    return readById<LunGroupMO>("getLunGroup", "/lungroup/", lunGroupID, texts::LUNGROUP_ID);
}

void CLunGroupHandlerImpl::addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    run("addLunToLunGroup", [&](Operation& op) {
        op.requireId(lunID, texts::LUN_ID);
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        addObjToLunGroup(lunID, lunGroupID, MO_LUN, op.name());
    });
}

void CLunGroupHandlerImpl::addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID)
{
    run("addSnapshotToLunGroup", [&](Operation& op) {
        op.requireId(snapshotID, texts::SNAPSHOT_ID);
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        addObjToLunGroup(snapshotID, lunGroupID, MO_SNAPSHOT, op.name());
    });
}

void CLunGroupHandlerImpl::removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    run("removeLunFromLunGroup", [&](Operation& op) {
        op.requireId(lunID, texts::LUN_ID);
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        retryWhile({ARRAY_NOT_READY, ARRAY_LUN_GROUP_NOT_READY}, RETRY_REMOVAL,
                   [&] { removeObjFromLunGroup(lunID, lunGroupID, MO_LUN, op.name()); });
    });
}

void CLunGroupHandlerImpl::removeSnapshotFromLunGroup(const std::string& snapshotID,
                                                      const std::string& lunGroupID)
{
    run("removeSnapshotFromLunGroup", [&](Operation& op) {
        op.requireId(snapshotID, texts::SNAPSHOT_ID);
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        retryWhile({ARRAY_NOT_READY, ARRAY_LUN_GROUP_NOT_READY}, RETRY_REMOVAL,
                   [&] { removeObjFromLunGroup(snapshotID, lunGroupID, MO_SNAPSHOT, op.name()); });
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByLun(const std::string& lunID, LunGroupQuery& query)
{
    return run("getLunGroupByLun", [&](Operation& op) {
        op.requireId(lunID, texts::LUN_ID);
        return getLunGroupByObjList(lunID, query, MO_LUN, op.name());
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupBySnapshot(const std::string& snapshotID,
                                                                    LunGroupQuery& query)
{
    return run("getLunGroupBySnapshot", [&](Operation& op) {
        op.requireId(snapshotID, texts::SNAPSHOT_ID);
        return getLunGroupByObjList(snapshotID, query, MO_SNAPSHOT, op.name());
    });
}

LunGroupMO CLunGroupHandlerImpl::getLunGroupByMappingView(const std::string& mappingViewID)
{
    return run("getLunGroupByMappingView", [&](Operation& op) {
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        const Answer found = op.get("/lungroup/associate?" + associatedWith(MO_MAPPINGVIEW, mappingViewID));
        return found.hasObject() ? getLunGroup(found.id()) : LunGroupMO();
    });
}

uint64_t CLunGroupHandlerImpl::getObjNOFromLunGroup(const std::string& lunGroupID)
{
    // The lines name it otherwise than the record does: docs/oddities.md#getlunno
    const Frame frame = Frame("getObjNOFromLunGroup").loggedAs("getLunNOFromLunGroup");
    return run(frame, [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        // docs/oddities.md#counted-apart
        const uint64_t luns = getCountByAssociate(lunGroupID, "lun");
        return saturatedSum(luns, getCountByAssociate(lunGroupID, "snapshot"));
    });
}

void CLunGroupHandlerImpl::addObjToLunGroup(const std::string& objID, const std::string& lunGroupID,
                                            MOType objType, const std::string& callerName)
{
    run("addObjToLunGroup", [&](Operation& op) {
        absorb(withKind(objType, [](auto kind) { return kind.ADDING; }), callerName, [&] {
            op.addMember(lunGroupID, objType, objID);
            op.post("/lungroup/associate");
        });
    });
}

void CLunGroupHandlerImpl::removeObjFromLunGroup(const std::string& objID, const std::string& lunGroupID,
                                                 MOType objType, const std::string& callerName)
{
    run("removeObjFromLunGroup", [&](Operation& op) {
        absorb(withKind(objType, [](auto kind) { return kind.REMOVING; }), callerName,
               [&] { op.del("/lungroup/associate?" + memberOf(lunGroupID, objType, objID)); });
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByObjList(const std::string& objID,
                                                                   LunGroupQuery& query, MOType objType,
                                                                   const std::string&)
{
    return run("getLunGroupByObjList", [&](Operation& op) {
        return list(op, objType, objID, query, &CLunGroupHandler::getLunGroup);
    });
}

uint64_t CLunGroupHandlerImpl::getCountByAssociate(const std::string& lunGroupID,
                                                   const std::string& resourceName)
{
    return run("getCountByAssociate", [&](Operation& op) {
        const Answer answer =
            op.get("/" + resourceName + "/count?" + associatedWith(MO_LUNGROUP, lunGroupID));
        // A group is deleted on this figure: what is not a number is never taken for 0.
        const std::string count = answer.count() != 0 ? answer[0]["COUNT"].asString() : std::string();
        op.requireReadable(!count.empty() && count.find_first_not_of("0123456789") == std::string::npos);
        return uint64_t{RestResponse::str2ul(count)};
    });
}

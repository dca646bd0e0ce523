#include "storage/LunGroupHandlerImpl.h"

#include "session/Absorb.h"
#include "session/Operation.h"
#include "session/Texts.h"
#include "session/Url.h"
#include "storage/LunGroupFields.h"

using namespace ovra::tessel;

namespace {

// The array's answers to an addition or removal that finds its work done.
const int ALREADY_IN_GROUP = 1077936862;
const int ALREADY_IN_LUNGROUP = 1077948997;
const int NOT_IN_LUNGROUP = 1077948996;

const char* const RETRY_REMOVAL = "retry removeObjFromLunGroup!";
const char* const NAME_EMPTY = "LunGroup name is empty! ";

} // namespace

LunGroupMO CLunGroupHandlerImpl::createLunGroup(LunGroupMO& lunGroup)
{
    return Operation::run("createLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.addIfSet("ID", lunGroup.ID);
        op.add("TYPE", int{MO_LUNGROUP});
        op.require(!lunGroup.NAME.empty(), NAME_EMPTY);
        op.add("NAME", lunGroup.NAME);
        op.addIfSet("DESCRIPTION", lunGroup.DESCRIPTION);
        if (lunGroup.APPTYPE == LunGroupMO().APPTYPE) {
            lunGroup.APPTYPE = 0; // in the caller's record too, on purpose
        }
        op.add("APPTYPE", int{lunGroup.APPTYPE});
        op.add("GROUPTYPE", 0UL); // whatever the record holds
        const std::string id = op.post("/lungroup/").id();
        return retryWhile({NOT_YET_READABLE, LUNGROUP_BUSY}, "retry get lun group!",
                          [&] { return getLunGroup(id); });
    });
}

void CLunGroupHandlerImpl::deleteLunGroup(const std::string& lunGroupID)
{
    // Closes with its enter text on purpose.
    Operation::run(Frame("deleteLunGroup").closingAsEntered(), m_pDeviceManager, [&](Operation& op) {
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        op.del("/lungroup/" + urlValue(lunGroupID));
    });
}

LunGroupMO CLunGroupHandlerImpl::getLunGroup(const std::string& lunGroupID)
{
    return Operation::run("getLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        return op.get("/lungroup/" + urlValue(lunGroupID)).read<LunGroupMO>();
    });
}

void CLunGroupHandlerImpl::addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    Operation::run("addLunToLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!lunID.empty(), texts::LUN_ID_EMPTY);
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        addObjToLunGroup(lunID, lunGroupID, MO_LUN, op.name());
    });
}

void CLunGroupHandlerImpl::addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID)
{
    Operation::run("addSnapshotToLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!snapshotID.empty(), texts::SNAPSHOT_ID_EMPTY);
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        addObjToLunGroup(snapshotID, lunGroupID, MO_SNAPSHOT, op.name());
    });
}

void CLunGroupHandlerImpl::removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID)
{
    Operation::run("removeLunFromLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!lunID.empty(), texts::LUN_ID_EMPTY);
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        retryWhile({NOT_YET_READABLE, LUNGROUP_BUSY}, RETRY_REMOVAL,
                   [&] { removeObjFromLunGroup(lunID, lunGroupID, MO_LUN, op.name()); });
    });
}

void CLunGroupHandlerImpl::removeSnapshotFromLunGroup(const std::string& snapshotID,
                                                      const std::string& lunGroupID)
{
    Operation::run("removeSnapshotFromLunGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!snapshotID.empty(), texts::SNAPSHOT_ID_EMPTY);
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        retryWhile({NOT_YET_READABLE, LUNGROUP_BUSY}, RETRY_REMOVAL,
                   [&] { removeObjFromLunGroup(snapshotID, lunGroupID, MO_SNAPSHOT, op.name()); });
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByLun(const std::string& lunID, LunGroupQuery& query)
{
    return Operation::run("getLunGroupByLun", m_pDeviceManager, [&](Operation& op) {
        op.require(!lunID.empty(), texts::LUN_ID_EMPTY);
        return getLunGroupByObjList(lunID, query, MO_LUN, op.name());
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupBySnapshot(const std::string& snapshotID,
                                                                    LunGroupQuery& query)
{
    return Operation::run("getLunGroupBySnapshot", m_pDeviceManager, [&](Operation& op) {
        op.require(!snapshotID.empty(), texts::SNAPSHOT_ID_EMPTY);
        return getLunGroupByObjList(snapshotID, query, MO_SNAPSHOT, op.name());
    });
}

LunGroupMO CLunGroupHandlerImpl::getLunGroupByMappingView(const std::string& mappingViewID)
{
    return Operation::run("getLunGroupByMappingView", m_pDeviceManager, [&](Operation& op) {
        op.require(!mappingViewID.empty(), texts::MAPPINGVIEW_ID_EMPTY);
        Answer found = op.get("/lungroup/associate?" + associatedWith(MO_MAPPINGVIEW, mappingViewID));
        return found.hasObject() ? getLunGroup(found.id()) : LunGroupMO();
    });
}

uint64_t CLunGroupHandlerImpl::getObjNOFromLunGroup(const std::string& lunGroupID)
{
    // The lines name it otherwise than the record does, on purpose.
    const Frame frame = Frame("getObjNOFromLunGroup").loggedAs("getLunNOFromLunGroup");
    return Operation::run(frame, m_pDeviceManager, [&](Operation& op) {
        op.require(!lunGroupID.empty(), texts::LUNGROUP_ID_EMPTY);
        const uint64_t luns = getCountByAssociate(lunGroupID, "lun");
        return luns + getCountByAssociate(lunGroupID, "snapshot");
    });
}

void CLunGroupHandlerImpl::addObjToLunGroup(const std::string& objID, const std::string& lunGroupID,
                                            MOType objType, const std::string& callerName)
{
    Operation::run("addObjToLunGroup", m_pDeviceManager, [&](Operation& op) {
        const bool isLun = objType == MO_LUN;
        Absorbed texts;
        texts.harmless = {ALREADY_IN_GROUP, ALREADY_IN_LUNGROUP};
        texts.harmlessText = isLun ? "the lun was already in the lun group, ignore it. "
                                   : "the snapshot was already in the lun group, ignore it. ";
        texts.errorAnswer = "addObjToLunGroup exception. ";
        texts.otherwise = isLun ? "add lun to lun group failed. " : "add snapshot to lun group failed. ";
        absorb(texts, callerName, [&] {
            op.add("ID", lunGroupID);
            op.add("ASSOCIATEOBJTYPE", int{objType});
            op.add("ASSOCIATEOBJID", objID);
            op.post("/lungroup/associate");
        });
    });
}

void CLunGroupHandlerImpl::removeObjFromLunGroup(const std::string& objID, const std::string& lunGroupID,
                                                 MOType objType, const std::string& callerName)
{
    Operation::run("removeObjFromLunGroup", m_pDeviceManager, [&](Operation& op) {
        const bool isLun = objType == MO_LUN;
        Absorbed texts;
        texts.harmless = {NOT_IN_LUNGROUP};
        texts.harmlessText =
            isLun ? "the lun was not in the lun group, ignore it. "
                  : "the snapshot was not in the lun group, ignore it. , ignore it. "; // on purpose
        texts.errorAnswer = "remove object from lunGroup exception. ";
        texts.otherwise =
            isLun ? "remove lun from lun group failed. " : "remove snapshot from lun group failed. ";
        absorb(texts, callerName, [&] {
            op.del("/lungroup/associate?ID=" + urlValue(lunGroupID) + "&" + associatedWith(objType, objID));
        });
    });
}

std::vector<LunGroupMO> CLunGroupHandlerImpl::getLunGroupByObjList(const std::string& objID,
                                                                   LunGroupQuery& query, MOType objType,
                                                                   const std::string&)
{
    return Operation::run("getLunGroupByObjList", m_pDeviceManager, [&](Operation& op) {
        const std::string filter = filterOf(query.filter, &LunGroupMO::ID, &LunGroupMO::NAME,
                                            &LunGroupMO::ISADD2MAPPINGVIEW, &LunGroupMO::APPTYPE);
        return op
            .get("/lungroup/associate?" + filter + associationOf(MO_LUNGROUP, objType, objID) +
                 rangeOf(query.start, query.count, "&"))
            .readEach([&](const std::string& id) { return getLunGroup(id); });
    });
}

uint64_t CLunGroupHandlerImpl::getCountByAssociate(const std::string& lunGroupID,
                                                   const std::string& resourceName)
{
    return Operation::run("getCountByAssociate", m_pDeviceManager, [&](Operation& op) {
        Answer answer = op.get("/" + resourceName + "/count?" + associatedWith(MO_LUNGROUP, lunGroupID));
        // A group is deleted on this figure: what is not a number is never taken for 0.
        const std::string count = answer.count() != 0 ? answer[0]["COUNT"].asString() : std::string();
        op.requireReadable(!count.empty() && count.find_first_not_of("0123456789") == std::string::npos);
        return uint64_t{RestResponse::str2ul(count)};
    });
}

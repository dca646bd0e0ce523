#include "access/MappingViewHandlerImpl.h"

#include "access/AccessFields.h"
#include "session/Retry.h"
#include "session/Texts.h"

using namespace ovra::tessel;

MappingViewMO CMappingViewHandlerImpl::createMappingView(MappingViewMO& mappingView)
{
    return run("createMappingView", [&](Operation& op) {
        op.addIfSet("ID", mappingView.ID);
        op.add("TYPE", int{MO_MAPPINGVIEW});
        op.require(!mappingView.NAME.empty(), "MappingView name is empty! ");
        op.add("NAME", mappingView.NAME);
        op.add("ENABLEINBANDCOMMAND", mappingView.ENABLEINBANDCOMMAND != 0);
        op.addIfSet("DESCRIPTION", mappingView.DESCRIPTION);
        const std::string id = op.post("/mappingview").id();
        return retryWhile({ARRAY_NOT_READY}, "retry get mapping view!", [&] { return getMappingView(id); });
    });
}

void CMappingViewHandlerImpl::deleteMappingView(const std::string& mappingViewID)
{
    deleteById("deleteMappingView", "/mappingview/", mappingViewID, texts::MAPPINGVIEW_ID);
}

MappingViewMO CMappingViewHandlerImpl::getMappingView(const std::string& mappingViewID)
{
    return readById<MappingViewMO>("getMappingView", "/mappingview/", mappingViewID, texts::MAPPINGVIEW_ID);
}

void CMappingViewHandlerImpl::addLunGroupToMappingView(const std::string& lunGroupID,
                                                       const std::string& mappingViewID)
{
    run("addLunGroupToMappingView", [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        associateWithMaskingView(lunGroupID, mappingViewID, MO_LUNGROUP, op.name());
    });
}

void CMappingViewHandlerImpl::removeLunGroupFromMappingView(const std::string& lunGroupID,
                                                            const std::string& mappingViewID)
{
    run("removeLunGroupFromMappingView", [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        removeAssociateFromMappingView(lunGroupID, mappingViewID, MO_LUNGROUP, op.name());
    });
}

void CMappingViewHandlerImpl::addHostGroupToMappingView(const std::string& hostGroupID,
                                                        const std::string& mappingViewID)
{
    run("addHostGroupToMappingView", [&](Operation& op) {
        op.requireId(hostGroupID, texts::HOSTGROUP_ID);
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        associateWithMaskingView(hostGroupID, mappingViewID, MO_HOSTGROUP, op.name());
    });
}

void CMappingViewHandlerImpl::removeHostGroupFromMappingView(const std::string& hostGroupID,
                                                             const std::string& mappingViewID)
{
    run("removeHostGroupFromMappingView", [&](Operation& op) {
        op.requireId(hostGroupID, texts::HOSTGROUP_ID);
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        removeAssociateFromMappingView(hostGroupID, mappingViewID, MO_HOSTGROUP, op.name());
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByLunGroup(const std::string& lunGroupID,
                                                                             MappingViewQuery& query)
{
    return run("getMappingViewByLunGroup", [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        return getMappingViewByCondition(lunGroupID, MO_LUNGROUP, query, op.name());
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByHostGroup(const std::string& hostGroupID,
                                                                              MappingViewQuery& query)
{
    return run("getMappingViewByHostGroup", [&](Operation& op) {
        op.requireId(hostGroupID, texts::HOSTGROUP_ID);
        return getMappingViewByCondition(hostGroupID, MO_HOSTGROUP, query, op.name());
    });
}

void CMappingViewHandlerImpl::associateWithMaskingView(const std::string& objID,
                                                       const std::string& mappingViewID,
                                                       unsigned long objType, const std::string& callerName)
{
    const Frame frame = Frame("associateWithMaskingView").errorsAs(callerName);
    run(frame, [&](Operation& op) {
        op.add("TYPE", int{MO_MAPPINGVIEW});
        op.add("ID", mappingViewID);
        op.add("ASSOCIATEOBJTYPE", objType);
        op.add("ASSOCIATEOBJID", objID);
        op.put("/mappingview/create_associate");
    });
}

void CMappingViewHandlerImpl::removeAssociateFromMappingView(const std::string& objID,
                                                             const std::string& mappingViewID,
                                                             unsigned long objType,
                                                             const std::string& callerName)
{
    const Frame frame = Frame("removeAssociateFromMappingView").errorsAs(callerName);
    run(frame, [&](Operation& op) {
        op.add("ID", mappingViewID); // docs/oddities.md#id-and-type
        op.add("TYPE", int{MO_MAPPINGVIEW});
        op.add("ASSOCIATEOBJTYPE", objType);
        op.add("ASSOCIATEOBJID", objID);
        op.put("/mappingview/remove_associate");
    });
}

std::vector<MappingViewMO> CMappingViewHandlerImpl::getMappingViewByCondition(const std::string& objID,
                                                                              MOType objType,
                                                                              MappingViewQuery& query,
                                                                              const std::string& callerName)
{
    const Frame frame = Frame("getMappingViewByCondition").errorsAs(callerName);
    return run(frame, [&](Operation& op) {
        return list(op, objType, objID, query, &CMappingViewHandler::getMappingView);
    });
}

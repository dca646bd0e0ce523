#include "access/HostGroupHandlerImpl.h"

#include "access/AccessFields.h"
#include "session/Absorb.h"
#include "session/Retry.h"
#include "session/Texts.h"

using namespace ovra::tessel;

namespace {

constexpr Absorbed ADDING = {{ARRAY_ALREADY_IN_HOST_GROUP},
                             "the host was already in the host group, ignore it. ",
                             "addHostToHostGroup exception. ",
                             "add host to host group failed. "};
constexpr Absorbed REMOVING = {
    {}, "", "remove host from host group failed. ", "remove host from host group failed. "};

} // namespace

HostGroupMO CHostGroupHandlerImpl::createHostGroup(HostGroupMO& hostGroup)
{
    return run("createHostGroup", [&](Operation& op) {
        op.add("TYPE", int{MO_HOSTGROUP});
        op.require(!hostGroup.NAME.empty(), "HostGroup name is empty! ");
        op.add("NAME", hostGroup.NAME);
        op.addIfSet("DESCRIPTION", hostGroup.DESCRIPTION);
        op.addIfSet("ID", hostGroup.ID); // docs/oddities.md#id-last
        const std::string id = op.post("/hostgroup").id();
        return retryWhile({ARRAY_NOT_READY}, "retry get host group!", [&] { return getHostGroup(id); });
    });
}

void CHostGroupHandlerImpl::deleteHostGroup(const std::string& hostGroupID)
{
    deleteById("deleteHostGroup", "/hostgroup/", hostGroupID, texts::HOSTGROUP_ID);
}

HostGroupMO CHostGroupHandlerImpl::getHostGroup(const std::string& hostGroupID)
{
    return readById<HostGroupMO>("getHostGroup", "/hostgroup/", hostGroupID, texts::HOSTGROUP_ID);
}

void CHostGroupHandlerImpl::addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    run("addHostToHostGroup", [&](Operation& op) {
        op.requireId(hostID, texts::HOST_ID);
        op.requireId(hostGroupID, texts::HOSTGROUP_ID);
        absorb(ADDING, op.name(), [&] {
            op.addMember(hostGroupID, MO_HOST, hostID);
            op.post("/hostgroup/associate");
        });
    });
}

std::vector<HostGroupMO> CHostGroupHandlerImpl::getHostGroupByHost(const std::string& hostID,
                                                                   HostGroupQuery& query)
{
    return run("getHostGroupByHost", [&](Operation& op) {
        op.requireId(hostID, texts::HOST_ID);
        return list(op, MO_HOST, hostID, query, &CHostGroupHandler::getHostGroup);
    });
}

HostGroupMO CHostGroupHandlerImpl::getHostGroupByMappingView(const std::string& mappingViewID)
{
    return run("getHostGroupByMappingView", [&](Operation& op) {
        op.requireId(mappingViewID, texts::MAPPINGVIEW_ID);
        const Answer found = op.get("/hostgroup/associate?" + associatedWith(MO_MAPPINGVIEW, mappingViewID));
        return found.hasObject() ? getHostGroup(found.id()) : HostGroupMO();
    });
}

void CHostGroupHandlerImpl::removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    run("removeHostFromHostGroup", [&](Operation& op) {
        op.requireId(hostID, texts::HOST_ID);
        op.requireId(hostGroupID, texts::HOSTGROUP_ID);
        // "/host" where the addition has "/hostgroup": docs/oddities.md#host-associate
        absorb(REMOVING, op.name(),
               [&] { op.del("/host/associate?" + memberOf(hostGroupID, MO_HOST, hostID)); });
    });
}

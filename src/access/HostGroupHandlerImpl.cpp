#include "access/HostGroupHandlerImpl.h"

#include "access/HostGroupFields.h"
#include "session/Absorb.h"
#include "session/Operation.h"
#include "session/Texts.h"
#include "session/Url.h"

using namespace ovra::tessel;

namespace {

const int ALREADY_IN_HOSTGROUP = 1077937501;

} // namespace

HostGroupMO CHostGroupHandlerImpl::createHostGroup(HostGroupMO& hostGroup)
{
    return Operation::run("createHostGroup", m_pDeviceManager, [&](Operation& op) {
        op.add("TYPE", int{MO_HOSTGROUP});
        op.require(!hostGroup.NAME.empty(), "HostGroup name is empty! ");
        op.add("NAME", hostGroup.NAME);
        op.addIfSet("DESCRIPTION", hostGroup.DESCRIPTION);
        op.addIfSet("ID", hostGroup.ID);
        const std::string id = op.post("/hostgroup").id();
        return retryWhile({NOT_YET_READABLE}, "retry get host group!", [&] { return getHostGroup(id); });
    });
}

void CHostGroupHandlerImpl::deleteHostGroup(const std::string& hostGroupID)
{
    Operation::run("deleteHostGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostGroupID.empty(), texts::HOSTGROUP_ID_EMPTY);
        op.del("/hostgroup/" + urlValue(hostGroupID));
    });
}

HostGroupMO CHostGroupHandlerImpl::getHostGroup(const std::string& hostGroupID)
{
    return Operation::run("getHostGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostGroupID.empty(), texts::HOSTGROUP_ID_EMPTY);
        return op.get("/hostgroup/" + urlValue(hostGroupID)).read<HostGroupMO>();
    });
}

void CHostGroupHandlerImpl::addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    Operation::run("addHostToHostGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostID.empty(), texts::HOST_ID_EMPTY);
        op.require(!hostGroupID.empty(), texts::HOSTGROUP_ID_EMPTY);
        Absorbed texts;
        texts.harmless = {ALREADY_IN_HOSTGROUP};
        texts.harmlessText = "the host was already in the host group, ignore it. ";
        texts.errorAnswer = "addHostToHostGroup exception. ";
        texts.otherwise = "add host to host group failed. ";
        absorb(texts, op.name(), [&] {
            op.add("ID", hostGroupID);
            op.add("ASSOCIATEOBJTYPE", int{MO_HOST});
            op.add("ASSOCIATEOBJID", hostID);
            op.post("/hostgroup/associate");
        });
    });
}

std::vector<HostGroupMO> CHostGroupHandlerImpl::getHostGroupByHost(const std::string& hostID,
                                                                   HostGroupQuery& query)
{
    return Operation::run("getHostGroupByHost", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostID.empty(), texts::HOST_ID_EMPTY);
        const std::string filter = filterOf(query.filter, &HostGroupMO::ID, &HostGroupMO::NAME);
        return op
            .get("/hostgroup/associate?" + filter + associationOf(MO_HOSTGROUP, MO_HOST, hostID) +
                 rangeOf(query.start, query.count, "&"))
            .readEach([&](const std::string& id) { return getHostGroup(id); });
    });
}

HostGroupMO CHostGroupHandlerImpl::getHostGroupByMappingView(const std::string& mappingViewID)
{
    return Operation::run("getHostGroupByMappingView", m_pDeviceManager, [&](Operation& op) {
        op.require(!mappingViewID.empty(), texts::MAPPINGVIEW_ID_EMPTY);
        Answer found = op.get("/hostgroup/associate?" + associatedWith(MO_MAPPINGVIEW, mappingViewID));
        return found.hasObject() ? getHostGroup(found.id()) : HostGroupMO();
    });
}

void CHostGroupHandlerImpl::removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID)
{
    Operation::run("removeHostFromHostGroup", m_pDeviceManager, [&](Operation& op) {
        op.require(!hostID.empty(), texts::HOST_ID_EMPTY);
        op.require(!hostGroupID.empty(), texts::HOSTGROUP_ID_EMPTY);
        Absorbed texts;
        texts.errorAnswer = texts.otherwise = "remove host from host group failed. ";
        // "/host" where the addition has "/hostgroup": so the array has it.
        absorb(texts, op.name(), [&] {
            op.del("/host/associate?ID=" + urlValue(hostGroupID) + "&" + associatedWith(MO_HOST, hostID));
        });
    });
}

#include "objects/Listing.h"
#include "objects/Membership.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

Inputs<HostGroupMO> newGroup()
{
    return {
        textInput("--name", "NAME", "name of the host group", &HostGroupMO::NAME).required(),
        textInput("--id", "ID", "ID to be given to it; the array chooses otherwise", &HostGroupMO::ID),
        textInput("--description", "TEXT", "description", &HostGroupMO::DESCRIPTION),
    };
}

Inputs<HostGroupMO> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &HostGroupMO::ID),
        textInput("--name", "NAME", "only those with this name", &HostGroupMO::NAME),
    };
}

Member hosts()
{
    Member host = member("--host", "ID", "host", &CHostGroupHandler::addHostToHostGroup,
                         &CHostGroupHandler::removeHostFromHostGroup);
    host.holds = [](Session& session, const std::string& id, const std::string& group) {
        return lists(session, &CHostGroupHandler::getHostGroupByHost, id, group);
    };
    return host;
}

} // namespace

Commands hostGroupCommands()
{
    const ObjectKind hostGroup{
        {"hostgroup"}, "host group", "HOSTGROUP", {"ID", "NAME", "ISADD2MAPPINGVIEW", "DESCRIPTION"}};
    const Commands own = {
        createCommand(hostGroup, newGroup(), &CHostGroupHandler::createHostGroup),
        showCommand(hostGroup, &CHostGroupHandler::getHostGroup),
        listCommand<HostGroupMO, HostGroupQuery>(
            hostGroup,
            {by("--host", "ID", "host", &CHostGroupHandler::getHostGroupByHost),
             byOne<HostGroupQuery>("--view", "ID", "mapping view",
                                   &CHostGroupHandler::getHostGroupByMappingView)},
            filters()),
        deleteCommand(hostGroup, &CHostGroupHandler::deleteHostGroup),
    };
    return together({own, membershipCommands(hostGroup, {hosts()})});
}

} // namespace tesselctl

#include "objects/Listing.h"
#include "objects/Membership.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

Inputs<MappingViewMO> newView()
{
    return {
        textInput("--name", "NAME", "name of the mapping view", &MappingViewMO::NAME).required(),
        textInput("--id", "ID", "ID to be given to it; the array chooses otherwise", &MappingViewMO::ID),
        textInput("--description", "TEXT", "description", &MappingViewMO::DESCRIPTION),
        flagInput("--in-band-commands", "allow in-band commands", &MappingViewMO::ENABLEINBANDCOMMAND, 1),
    };
}

Inputs<MappingViewMO> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &MappingViewMO::ID),
        textInput("--name", "NAME", "only those with this name", &MappingViewMO::NAME),
    };
}

std::vector<Member> members()
{
    return {member("--lungroup", "ID", "LUN group", &CMappingViewHandler::addLunGroupToMappingView,
                   &CMappingViewHandler::removeLunGroupFromMappingView),
            member("--hostgroup", "ID", "host group", &CMappingViewHandler::addHostGroupToMappingView,
                   &CMappingViewHandler::removeHostGroupFromMappingView)};
}

} // namespace

Commands viewCommands()
{
    const ObjectKind view{
        {"view"}, "mapping view", "VIEW", {"ID", "NAME", "ENABLEINBANDCOMMAND", "DESCRIPTION"}};
    const Commands own = {
        createCommand(view, newView(), &CMappingViewHandler::createMappingView),
        showCommand(view, &CMappingViewHandler::getMappingView),
        listCommand<MappingViewMO, MappingViewQuery>(
            view,
            {by("--lungroup", "ID", "LUN group", &CMappingViewHandler::getMappingViewByLunGroup),
             by("--hostgroup", "ID", "host group", &CMappingViewHandler::getMappingViewByHostGroup)},
            filters()),
        deleteCommand(view, &CMappingViewHandler::deleteMappingView),
    };
    return together({own, membershipCommands(view, members())});
}

} // namespace tesselctl

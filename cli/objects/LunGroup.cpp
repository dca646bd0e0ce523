#include "objects/Listing.h"
#include "objects/Membership.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

const ObjectKind& kind()
{
    static const ObjectKind lunGroup{
        {"lungroup"}, "LUN group", "LUNGROUP", {"ID", "NAME", "ISADD2MAPPINGVIEW", "APPTYPE", "DESCRIPTION"}};
    return lunGroup;
}

Inputs<LunGroupMO> newGroup()
{
    return {
        textInput("--name", "NAME", "name of the LUN group", &LunGroupMO::NAME).required(),
        textInput("--id", "ID", "ID to be given to it; the array chooses otherwise", &LunGroupMO::ID),
        textInput("--description", "TEXT", "description", &LunGroupMO::DESCRIPTION),
        numberInput("--app-type", "CODE", "application type, the array's code (0)", &LunGroupMO::APPTYPE),
    };
}

Inputs<LunGroupMO> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &LunGroupMO::ID),
        textInput("--name", "NAME", "only those with this name", &LunGroupMO::NAME),
        choiceInput("--in-view", "YES/NO", "only those in a mapping view, or in none",
                    &LunGroupMO::ISADD2MAPPINGVIEW, yesOrNo()),
        numberInput("--app-type", "CODE", "only those of this application type", &LunGroupMO::APPTYPE),
    };
}

std::vector<Member> members()
{
    Member lun = member("--lun", "ID", "LUN", &CLunGroupHandler::addLunToLunGroup,
                        &CLunGroupHandler::removeLunFromLunGroup);
    lun.holds = [](Session& session, const std::string& id, const std::string& group) {
        return lists(session, &CLunHandler::getLunByLunGroup, group, id);
    };
    Member snapshot = member("--snapshot", "ID", "snapshot", &CLunGroupHandler::addSnapshotToLunGroup,
                             &CLunGroupHandler::removeSnapshotFromLunGroup);
    snapshot.holds = [](Session& session, const std::string& id, const std::string& group) {
        return lists(session, &CSnapshotHandler::getSnapshotByLunGroup, group, id);
    };
    return {lun, snapshot};
}

Command countCommand()
{
    return {kind().command("count"),
            "count the LUNs and snapshots of a LUN group",
            {kind().idArgument()},
            {},
            {},
            [](Context& context) {
                const std::string id = context.text(kind().idName);
                const auto read = [&] {
                    return context.handler<CLunGroupHandler>().getObjNOFromLunGroup(id);
                };
                const uint64_t count = withObjects(context.session(), {{kind().title, id}}, read);
                Json::Value more(Json::objectValue);
                more["count"] = Json::UInt64(count);
                tellAction(context, kind(), id, "count", std::to_string(count), more);
            }};
}

} // namespace

Commands lunGroupCommands()
{
    const Commands own = {
        createCommand(kind(), newGroup(), &CLunGroupHandler::createLunGroup),
        showCommand(kind(), &CLunGroupHandler::getLunGroup),
        listCommand<LunGroupMO, LunGroupQuery>(
            kind(),
            {by("--lun", "ID", "LUN", &CLunGroupHandler::getLunGroupByLun),
             by("--snapshot", "ID", "snapshot", &CLunGroupHandler::getLunGroupBySnapshot),
             byOne<LunGroupQuery>("--view", "ID", "mapping view",
                                  &CLunGroupHandler::getLunGroupByMappingView)},
            filters()),
        countCommand(),
        deleteCommand(kind(), &CLunGroupHandler::deleteLunGroup),
    };
    return together({own, membershipCommands(kind(), members())});
}

} // namespace tesselctl

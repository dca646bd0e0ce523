#include "objects/Listing.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

Inputs<SnapshotMO> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &SnapshotMO::ID),
        textInput("--name", "NAME", "only those with this name", &SnapshotMO::NAME),
        textInput("--lun", "ID", "only those of this source LUN", &SnapshotMO::PARENTID),
        numberInput("--running-status", "CODE", "only those in this state", &SnapshotMO::RUNNINGSTATUS),
        numberInput("--health-status", "CODE", "only those in this health", &SnapshotMO::HEALTHSTATUS),
    };
}

} // namespace

Commands snapshotCommands()
{
    const ObjectKind snapshot{
        {"snapshot"}, "snapshot", "ID", {"ID", "NAME", "PARENTID", "RUNNINGSTATUS", "WWN"}};
    return {
        showCommand(snapshot, &CSnapshotHandler::getSnapshot),
        listCommand<SnapshotMO, SnapshotQuery>(
            snapshot,
            {ofGroup(by("--group", "ID", "LUN group", &CSnapshotHandler::getSnapshotByLunGroup)),
             by("--host", "ID", "host", &CSnapshotHandler::getSnapshotByHost)},
            filters()),
    };
}

} // namespace tesselctl

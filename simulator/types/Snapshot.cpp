#include "model/World.h"
#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {
namespace {

void completeSnapshot(Change& snapshot)
{
    if (snapshot.creating()) {
        snapshot.values["USERCAPACITY"] = snapshot.world.at(Type::LUN, snapshot.parentId).value("CAPACITY");
    }
}

} // namespace

const ObjectType& snapshotType()
{
    static const ObjectType type = [] {
        ObjectType snapshots{Type::SNAPSHOT, "snapshot", {"snapshot", "SNAPSHOT"}, {}};
        snapshots.parent = Parent{Type::LUN, true, false};
        snapshots.complete = completeSnapshot;
        snapshots.fields = {
            nameField(),
            descriptionField(),
            healthField(),
            runningField(RUNNING_ONLINE),
            Field("USERCAPACITY", Wire::DECIMAL),
            Field("CONSUMEDCAPACITY", Wire::DECIMAL).fallback("0"),
            wwnField('1'),
            associatedFlag("ISADD2LUNGROUP", Type::SNAPSHOT, Type::LUN_GROUP),
            exposedFlag(Type::SNAPSHOT),
        };
        return snapshots;
    }();
    return type;
}

} // namespace arraysim

#include "model/World.h"
#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {
namespace {

void completeSnapshot(Change& snapshot)
{
    if (snapshot.creating()) {
        snapshot.values["USERCAPACITY"] = snapshot.world.at(Type::lun, snapshot.parentId).value("CAPACITY");
    }
}

} // namespace

const ObjectType& snapshotType()
{
    static const ObjectType type = [] {
        ObjectType snapshots{Type::snapshot, "snapshot", {"snapshot", "SNAPSHOT"}, {}};
        snapshots.parent = Parent{Type::lun, true, false};
        snapshots.complete = completeSnapshot;
        snapshots.fields = {
            nameField(),
            descriptionField(),
            healthField(),
            runningField(runningOnline),
            Field("USERCAPACITY", Wire::decimal),
            Field("CONSUMEDCAPACITY", Wire::decimal).fallback("0"),
            wwnField('1'),
            associatedFlag("ISADD2LUNGROUP", Type::snapshot, Type::lunGroup),
            exposedFlag(Type::snapshot),
        };
        return snapshots;
    }();
    return type;
}

} // namespace arraysim

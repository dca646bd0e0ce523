#include "base/Codes.h"
#include "model/World.h"
#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {
namespace {

/** A view that binds only one side exposes nothing and may go; one that binds both is in use. */
void removeMappingView(World& world, const Object& view)
{
    const ObjectKey key(Type::MAPPING_VIEW, view.id);
    const IdSet& lunGroups = world.linked(key, Type::LUN_GROUP);
    const IdSet& hostGroups = world.linked(key, Type::HOST_GROUP);
    if (!lunGroups.empty() && !hostGroups.empty()) {
        throw ArrayError(Code::OBJECT_IN_USE, "The mapping view " + view.id + " binds the LUN group " +
                                                  *lunGroups.begin() + " to the host group " +
                                                  *hostGroups.begin() + ": remove one of them first.");
    }
}

} // namespace

const ObjectType& mappingViewType()
{
    static const ObjectType type = [] {
        ObjectType views{Type::MAPPING_VIEW, "mapping view", {"mappingview"}, {}};
        views.remove = removeMappingView;
        views.fields = {
            nameField(),
            descriptionField(),
            Field("ENABLEINBANDCOMMAND", Wire::FLAG).given(Given::AT_CREATE).modifiable().fallback("false"),
        };
        return views;
    }();
    return type;
}

} // namespace arraysim

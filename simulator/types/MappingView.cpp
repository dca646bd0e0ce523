#include "model/World.h"
#include "types/Common.h"
#include "types/Types.h"
#include "wire/Codes.h"

namespace arraysim {
namespace {

/// A view that binds only one side exposes nothing and may go; one that binds both is in use.
void removeMappingView(World& world, const Object& view)
{
    const ObjectKey key(Type::mappingView, view.id);
    const IdSet& lunGroups = world.linked(key, Type::lunGroup);
    const IdSet& hostGroups = world.linked(key, Type::hostGroup);
    if (!lunGroups.empty() && !hostGroups.empty()) {
        throw ArrayError(Code::objectInUse, "The mapping view " + view.id + " binds the LUN group " +
                                                *lunGroups.begin() + " to the host group " +
                                                *hostGroups.begin() + ": remove one of them first.");
    }
}

} // namespace

const ObjectType& mappingViewType()
{
    static const ObjectType type = [] {
        ObjectType views{Type::mappingView, "mapping view", {"mappingview"}, {}};
        views.remove = removeMappingView;
        views.fields = {
            nameField(),
            descriptionField(),
            Field("ENABLEINBANDCOMMAND", Wire::flag).given(Given::atCreate).modifiable().fallback("false"),
        };
        return views;
    }();
    return type;
}

} // namespace arraysim

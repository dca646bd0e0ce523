#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& lunGroupType()
{
    static const ObjectType type = [] {
        ObjectType groups{Type::lunGroup, "LUN group", {"lungroup"}, {}};
        groups.fields = {
            nameField(),
            descriptionField(),
            Field("APPTYPE", Wire::decimal).given(Given::atCreate).range(0, 255).fallback("0").filter(),
            Field("GROUPTYPE", Wire::decimal).given(Given::atCreate).range(0, 0).fallback("0"),
            associatedFlag("ISADD2MAPPINGVIEW", Type::lunGroup, Type::mappingView),
        };
        return groups;
    }();
    return type;
}

} // namespace arraysim

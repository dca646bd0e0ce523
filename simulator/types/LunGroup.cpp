#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& lunGroupType()
{
    static const ObjectType type = [] {
        ObjectType groups{Type::LUN_GROUP, "LUN group", {"lungroup"}, {}};
        groups.fields = {
            nameField(),
            descriptionField(),
            Field("APPTYPE", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 255).fallback("0").filter(),
            Field("GROUPTYPE", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 0).fallback("0"),
            associatedFlag("ISADD2MAPPINGVIEW", Type::LUN_GROUP, Type::MAPPING_VIEW),
        };
        return groups;
    }();
    return type;
}

} // namespace arraysim

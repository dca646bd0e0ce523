#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& hostGroupType()
{
    static const ObjectType type = [] {
        ObjectType groups{Type::hostGroup, "host group", {"hostgroup"}, {}};
        groups.fields = {
            nameField(),
            descriptionField(),
            associatedFlag("ISADD2MAPPINGVIEW", Type::hostGroup, Type::mappingView),
        };
        return groups;
    }();
    return type;
}

} // namespace arraysim

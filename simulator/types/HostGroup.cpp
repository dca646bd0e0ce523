#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& hostGroupType()
{
    static const ObjectType type = [] {
        ObjectType groups{Type::HOST_GROUP, "host group", {"hostgroup"}, {}};
        groups.fields = {
            nameField(),
            descriptionField(),
            associatedFlag("ISADD2MAPPINGVIEW", Type::HOST_GROUP, Type::MAPPING_VIEW),
        };
        return groups;
    }();
    return type;
}

} // namespace arraysim

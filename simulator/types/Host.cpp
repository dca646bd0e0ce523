#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& hostType()
{
    static const ObjectType type = [] {
        ObjectType hosts{Type::host, "host", {"host"}, {}};
        hosts.parent = Parent{Type::hostGroup, false, false};
        hosts.fields = {
            nameField(),
            descriptionField(),
            healthField(),
            runningField(runningNormal),
            Field("OPERATIONSYSTEM", Wire::decimal)
                .given(Given::required)
                .range(0, 255)
                .modifiable()
                .filter(),
            Field("LOCATION", Wire::text).given(Given::atCreate).modifiable(),
            Field("IP", Wire::text).given(Given::atCreate).modifiable().filter(),
            associatedFlag("ISADD2HOSTGROUP", Type::host, Type::hostGroup),
        };
        return hosts;
    }();
    return type;
}

} // namespace arraysim

#include "types/Common.h"
#include "types/Types.h"

namespace arraysim {

const ObjectType& hostType()
{
    static const ObjectType type = [] {
        ObjectType hosts{Type::HOST, "host", {"host"}, {}};
        hosts.parent = Parent{Type::HOST_GROUP, false, false};
        hosts.fields = {
            nameField(),
            descriptionField(),
            healthField(),
            runningField(RUNNING_NORMAL),
            Field("OPERATIONSYSTEM", Wire::DECIMAL)
                .given(Given::REQUIRED)
                .range(0, 255)
                .modifiable()
                .filter(),
            Field("LOCATION", Wire::TEXT).given(Given::AT_CREATE).modifiable(),
            Field("IP", Wire::TEXT).given(Given::AT_CREATE).modifiable().filter(),
            associatedFlag("ISADD2HOSTGROUP", Type::HOST, Type::HOST_GROUP),
        };
        return hosts;
    }();
    return type;
}

} // namespace arraysim

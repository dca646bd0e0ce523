#include "types/Types.h"

namespace arraysim {

const std::vector<const ObjectType*>& objectTypes()
{
    static const std::vector<const ObjectType*> types = {
        &storagePoolType(), &lunType(),       &snapshotType(),    &lunGroupType(),
        &hostType(),        &hostGroupType(), &mappingViewType(), &iscsiInitiatorType(),
        &fcInitiatorType(), &fcPortType(),    &fcoePortType(),    &ethPortType(),
    };
    return types;
}

} // namespace arraysim

#ifndef SIMULATOR_TYPES_TYPES_H
#define SIMULATOR_TYPES_TYPES_H

#include "model/ObjectType.h"

namespace arraysim {

const ObjectType& storagePoolType();
const ObjectType& lunType();
const ObjectType& snapshotType();
const ObjectType& lunGroupType();
const ObjectType& hostType();
const ObjectType& hostGroupType();
const ObjectType& mappingViewType();
const ObjectType& iscsiInitiatorType();
const ObjectType& fcInitiatorType();
const ObjectType& fcPortType();
const ObjectType& fcoePortType();
const ObjectType& ethPortType();

} // namespace arraysim

#endif

#ifndef SIMULATOR_WIRE_ASSOCIATIONROUTES_H
#define SIMULATOR_WIRE_ASSOCIATIONROUTES_H

#include "model/Operations.h"
#include "wire/Target.h"

namespace arraysim {

/** Runs a request that makes or breaks an association; false for any other. Throws ArrayError. */
bool changesAssociation(World& world, const ObjectRequest& request);

/** Whether the segment behind a resource names an action instead of an object. */
bool isAction(const std::string& segment);

} // namespace arraysim

#endif

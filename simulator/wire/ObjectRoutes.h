#ifndef SIMULATOR_WIRE_OBJECTROUTES_H
#define SIMULATOR_WIRE_OBJECTROUTES_H

#include "model/Operations.h"
#include "wire/Answer.h"
#include "wire/Target.h"

namespace arraysim {

/** Finds the operation that a request asks for and runs it. Throws ArrayError. Hold the world's lock. */
Answer routeObject(World& world, const ObjectRequest& request);

} // namespace arraysim

#endif

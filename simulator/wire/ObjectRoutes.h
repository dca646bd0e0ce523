#ifndef SIMULATOR_WIRE_OBJECTROUTES_H
#define SIMULATOR_WIRE_OBJECTROUTES_H

#include "model/Operations.h"
#include "wire/Answer.h"
#include "wire/Target.h"

namespace arraysim {

/** A request for objects, its target relative to the device. */
struct ObjectRequest
{
    std::string method;
    Target target;
    std::string body;
};

/** Finds the operation that a request asks for and runs it. Throws ArrayError. Hold the world's lock. */
Answer routeObject(World& world, const ObjectRequest& request);

/** Whether the segment behind a resource names an action instead of an object. */
bool isAction(const std::string& segment);

} // namespace arraysim

#endif

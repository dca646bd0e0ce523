#ifndef SIMULATOR_MODEL_BULKLUNS_H
#define SIMULATOR_MODEL_BULKLUNS_H

#include "model/World.h"

#include <json/json.h>

namespace arraysim {

/**
 * Makes many LUNs at once, all or none: "count", and what they are to be like ("pool", "lungroup", "prefix",
 * "sectors"). Throws ArrayError. Hold the world's lock.
 * @return {"ids": [...]}
 */
Json::Value createLuns(World& world, const Json::Value& wanted);

} // namespace arraysim

#endif

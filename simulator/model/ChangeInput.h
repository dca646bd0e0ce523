#ifndef SIMULATOR_MODEL_CHANGEINPUT_H
#define SIMULATOR_MODEL_CHANGEINPUT_H

#include "model/ObjectType.h"

#include <json/json.h>

namespace arraysim {

/** Takes the fields of the body into the change, each checked. Throws ArrayError. */
void takeFields(Change& change, const ObjectType& type, const Json::Value& body);

/** Reads PARENTID and PARENTTYPE; without them the parent stays as it is. Throws ArrayError. */
void takeParent(Change& change, const ObjectType& type, const Json::Value& body);

/** Throws ArrayError (NAME_TAKEN) where another object has the value of a unique field. */
void checkUnique(const Change& change, const ObjectType& type);

} // namespace arraysim

#endif

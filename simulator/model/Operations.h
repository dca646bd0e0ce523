#ifndef SIMULATOR_MODEL_OPERATIONS_H
#define SIMULATOR_MODEL_OPERATIONS_H

#include "model/Associations.h"
#include "model/Record.h"

#include <optional>

namespace arraysim {

/** The objects that are associated with one object. */
struct AssociatedWith
{
    Type type;
    std::string id;
};

/**
 * Every operation checks all of a request before it changes anything, and throws ArrayError with the
 * reason where it refuses. Hold the world's lock.
 * @return the record of the new object, which is readable after the reads that settling says
 */
Json::Value createObject(World& world, const ObjectType& type, const Json::Value& body,
                         const Settling& settling);
Json::Value readObject(World& world, const ObjectType& type, const std::string& id);
void modifyObject(World& world, const ObjectType& type, const std::string& id, const Json::Value& body);
/** Sets fields that a caller may not: what an array finds out or does by itself, as states and sizes. */
void adjustObject(World& world, const ObjectType& type, const std::string& id, const Json::Value& body);
void deleteObject(World& world, const ObjectType& type, const std::string& id);

/** @return an array of the records that pass the filter, cut to the range */
Json::Value listObjects(const World& world, const ObjectType& type, const Selection& selection,
                        const std::optional<AssociatedWith>& of);
/** @return a record with COUNT */
Json::Value countObjects(const World& world, const ObjectType& type, const Selection& selection,
                         const std::optional<AssociatedWith>& of);

} // namespace arraysim

#endif

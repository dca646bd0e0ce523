#ifndef SIMULATOR_MODEL_RECORD_H
#define SIMULATOR_MODEL_RECORD_H

#include "model/Selection.h"
#include "model/World.h"

#include <json/json.h>

#include <optional>

namespace arraysim {

/** The object as the array answers it. */
Json::Value record(const World& world, const ObjectType& type, const Object& object);

/** One field as text, nothing where the object does not answer it. */
std::optional<std::string> fieldText(const World& world, const Field& field, const Object& object);

/** The conditions of a filter, checked against the type's fields once, then applied to its objects. */
class Filter
{
public:
    /** Throws ArrayError (QUERY_MALFORMED) for a key that the type cannot be filtered by. */
    Filter(const World& world, const ObjectType& type, const std::vector<Condition>& conditions);

    bool matches(const Object& object) const;

private:
    struct Test
    {
        const Field* field; ///< null for ID and PARENTID
        std::string key;
        std::string value;
    };

    const World& m_world;
    const ObjectType& m_type;
    std::vector<Test> m_tests;
};

} // namespace arraysim

#endif

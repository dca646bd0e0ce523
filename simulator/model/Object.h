#ifndef SIMULATOR_MODEL_OBJECT_H
#define SIMULATOR_MODEL_OBJECT_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace arraysim {

/** The array's object type codes, as TYPE, PARENTTYPE and ASSOCIATEOBJTYPE carry them. */
enum class Type : int
{
    LUN = 11,
    HOST_GROUP = 14,
    HOST = 21,
    SNAPSHOT = 27,
    STORAGE_POOL = 216,
    MAPPING_VIEW = 245,
    LUN_GROUP = 256,
    ISCSI_INITIATOR = 301,
    FC_INITIATOR = 302,
    FC_PORT = 311,
    FCOE_PORT = 312,
    ETH_PORT = 313,
};

/** Orders decimal IDs by their number, before all others, which go by their text. */
struct IdLess
{
    bool operator()(const std::string& a, const std::string& b) const;
};

using IdSet = std::set<std::string, IdLess>;
/** IDs in their order. */
using IdList = std::shared_ptr<const std::vector<std::string>>;
using Values = std::map<std::string, std::string>;

/** One managed object: only what was given to it; what follows from others is computed when it is read. */
struct Object
{
    std::string id;
    Values values;               ///< field key -> value as text
    unsigned unsettledReads = 0; ///< reads by ID that still answer "not readable yet"

    std::string value(const std::string& key, const std::string& fallback = {}) const;
};

using ObjectMap = std::map<std::string, Object, IdLess>;

/** Names one object among all types. */
using ObjectKey = std::pair<Type, std::string>;

} // namespace arraysim

#endif

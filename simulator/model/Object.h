#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

namespace arraysim {

/// The array's object type codes, as TYPE, PARENTTYPE and ASSOCIATEOBJTYPE carry them.
enum class Type : int
{
    lun = 11,
    hostGroup = 14,
    host = 21,
    snapshot = 27,
    storagePool = 216,
    mappingView = 245,
    lunGroup = 256,
    iscsiInitiator = 301,
    fcInitiator = 302,
    fcPort = 311,
    fcoePort = 312,
    ethPort = 313,
};

/// Orders decimal IDs by their number, before all others, which go by their text.
struct IdLess
{
    bool operator()(const std::string& a, const std::string& b) const;
};

using IdSet = std::set<std::string, IdLess>;
using Values = std::map<std::string, std::string>;

/// One managed object: only what was given to it; what follows from others is computed when it is read.
struct Object
{
    std::string id;
    Values values;               ///< field key -> value as text
    unsigned unsettledReads = 0; ///< reads by ID that still answer "not readable yet"

    std::string value(const std::string& key, const std::string& fallback = {}) const;
};

using ObjectMap = std::map<std::string, Object, IdLess>;

/// Names one object among all types.
using ObjectKey = std::pair<Type, std::string>;

} // namespace arraysim

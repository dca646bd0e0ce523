#ifndef SIMULATOR_WIRE_TARGET_H
#define SIMULATOR_WIRE_TARGET_H

#include <string>
#include <utility>
#include <vector>

namespace arraysim {

/** A request target, split before it is decoded, so that an encoded separator stays data. */
struct Target
{
    std::vector<std::string> segments;                           ///< of the path, each decoded once
    std::vector<std::pair<std::string, std::string>> parameters; ///< key decoded, value still raw
    std::string path;                                            ///< raw, without the query
    std::string query;                                           ///< raw, without the question mark
};

/** A request for objects, its target relative to the device. */
struct ObjectRequest
{
    std::string method;
    Target target;
    std::string body;
};

/**
 * Splits a raw request target. Throws ArrayError (QUERY_MALFORMED) for a bad escape or a parameter
 * without a value.
 */
Target parseTarget(const std::string& raw);

/** Decodes %XX once; in a query a plus sign is a blank. Throws ArrayError for a bad escape. */
std::string percentDecode(const std::string& raw, bool plusIsBlank);

} // namespace arraysim

#endif

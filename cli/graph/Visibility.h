#ifndef GRAPH_VISIBILITY_H
#define GRAPH_VISIBILITY_H

#include "graph/Graph.h"

#include <string>
#include <vector>

namespace tesselctl {

/** One link of the way from an initiator to a LUN. */
struct Link
{
    bool stands;
    std::string text; ///< "host 3 (web1) is in host group 5 (web)"
};

/** A command that would make what is missing. */
struct Remedy
{
    std::string command;
    std::string effect; ///< what it means for others; may be empty
};

struct Visibility
{
    bool isVisible = false; ///< a way stands, by the links that the array lists
    std::vector<Link> links;
    std::vector<Remedy> remedies; ///< empty when visible; what touches others least comes first
};

/**
 * Reads from a graph whether its node `from` (initiator or host) reaches the LUN or snapshot `to`, and what
 * is missing. The graph holds what was walked from both ends.
 */
Visibility examine(const Graph& graph, size_t from, size_t to);

} // namespace tesselctl

#endif

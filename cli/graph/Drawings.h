#ifndef GRAPH_DRAWINGS_H
#define GRAPH_DRAWINGS_H

#include "graph/Graph.h"

#include <json/value.h>

#include <string>

namespace tesselctl {

/** A tree for the terminal that begins with a node and runs away from it. */
std::string drawTree(const Graph& graph, size_t root, bool ascii);

/** Text for Graphviz. */
std::string drawDot(const Graph& graph);

/** A picture with a column for each layer. */
std::string drawSvg(const Graph& graph);

/** {"nodes": [...], "edges": [...]} */
Json::Value graphJson(const Graph& graph);

} // namespace tesselctl

#endif

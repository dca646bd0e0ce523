#ifndef GRAPH_OWNOBJECTS_H
#define GRAPH_OWNOBJECTS_H

#include "graph/Graph.h"

#include <json/value.h>

#include <string>

namespace tesselctl {

/** The three objects by which attaches show disks to one host; found from the host on. */
class OwnObjects
{
public:
    /** @param host a node of the graph. */
    OwnObjects(const Graph& graph, size_t host);

    /** A part of the explanation; empty when the host has none of them. */
    std::string text() const;
    /** The ID of each, or null. */
    Json::Value json() const;

private:
    static constexpr size_t COUNT = 3;

    const Graph& m_graph;
    std::vector<size_t> m_nodes; ///< host group, view, LUN group, as far as they go
};

} // namespace tesselctl

#endif

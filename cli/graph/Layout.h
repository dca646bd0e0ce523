#ifndef TESSELCTL_GRAPH_LAYOUT_H
#define TESSELCTL_GRAPH_LAYOUT_H

#include "graph/Graph.h"

namespace tesselctl {

struct Point
{
    double x = 0;
    double y = 0;
};

/// Where everything of a picture stands; in pixels.
struct Layout
{
    static constexpr double boxWidth = 212;
    static constexpr double boxHeight = 44;
    static constexpr double columnStep = 290;
    static constexpr double rowStep = 60;
    static constexpr double margin = 24;
    static constexpr double headerHeight = 36;

    std::vector<Layer> columns; ///< layers that hold anything, from left to right
    std::vector<Point> places;  ///< upper left corner of each node's box
    double width = 0;
    double height = 0;
};

/// A column for each layer; nodes are ordered by their neighbours, so that edges cross seldom.
Layout layOut(const Graph& graph);

} // namespace tesselctl

#endif

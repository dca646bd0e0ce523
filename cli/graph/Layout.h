#ifndef GRAPH_LAYOUT_H
#define GRAPH_LAYOUT_H

#include "graph/Graph.h"

namespace tesselctl {

struct Point
{
    double x = 0;
    double y = 0;
};

/** Where everything of a picture stands; in pixels. */
struct Layout
{
    static constexpr double BOX_WIDTH = 212;
    static constexpr double BOX_HEIGHT = 44;
    static constexpr double COLUMN_STEP = 290;
    static constexpr double ROW_STEP = 60;
    static constexpr double MARGIN = 24;
    static constexpr double HEADER_HEIGHT = 36;

    std::vector<Layer> columns; ///< layers that hold anything, from left to right
    std::vector<Point> places;  ///< upper left corner of each node's box
    double width = 0;
    double height = 0;
};

/** A column for each layer; nodes are ordered by their neighbours, so that edges cross seldom. */
Layout layOut(const Graph& graph);

} // namespace tesselctl

#endif

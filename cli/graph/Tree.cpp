#include "graph/Drawings.h"

#include "output/SmartTable.h"
#include "text/Display.h"

namespace tesselctl {
namespace {

/** A node that is reached on several ways is drawn on each. */
void draw(SmartTable& table, libscols_line* parent, const Graph& graph, size_t node, bool forward)
{
    libscols_line* line = table.addLine(parent, {printable(graph.nodes()[node].label())});
    for (const size_t next : forward ? graph.after(node) : graph.before(node)) {
        draw(table, line, graph, next, forward);
    }
}

} // namespace

std::string drawTree(const Graph& graph, size_t root, bool ascii)
{
    SmartTable table;
    scols_table_enable_noheadings(table.get(), 1);
    scols_table_enable_ascii(table.get(), ascii ? 1 : 0);
    scols_table_new_column(table.get(), "", 0, SCOLS_FL_TREE);
    draw(table, nullptr, graph, root, graph.nodes()[root].layer != Layer::UNIT);
    return table.text();
}

} // namespace tesselctl

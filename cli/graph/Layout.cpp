#include "graph/Layout.h"

#include <algorithm>

namespace tesselctl {
namespace {

constexpr int SWEEPS = 8;

using Column = std::vector<size_t>;

/** The mean row of a node's neighbours; its own row where it has none. */
double meanRow(const std::vector<size_t>& neighbours, const std::vector<double>& rows, double own)
{
    double sum = 0;
    for (const size_t neighbour : neighbours) {
        sum += rows[neighbour];
    }
    return neighbours.empty() ? own : sum / static_cast<double>(neighbours.size());
}

void numberRows(const Column& column, std::vector<double>& rows)
{
    // Shorter columns spread as far as longer ones do, so that means of rows can be compared.
    for (size_t i = 0; i < column.size(); ++i) {
        rows[column[i]] = (static_cast<double>(i) + 0.5) / static_cast<double>(column.size());
    }
}

void sweep(const Graph& graph, std::vector<Column>& columns, std::vector<double>& rows, bool forward)
{
    for (size_t i = 0; i < columns.size(); ++i) {
        Column& column = columns[forward ? i : columns.size() - 1 - i];
        std::vector<double> wanted(graph.nodes().size());
        for (const size_t node : column) {
            wanted[node] = meanRow(forward ? graph.before(node) : graph.after(node), rows, rows[node]);
        }
        std::stable_sort(column.begin(), column.end(),
                         [&](size_t a, size_t b) { return wanted[a] < wanted[b]; });
        numberRows(column, rows);
    }
}

} // namespace

Layout layOut(const Graph& graph)
{
    Layout layout;
    std::vector<Column> columns;
    std::vector<double> rows(graph.nodes().size());
    size_t longest = 0;
    for (size_t layer = 0; layer < LAYER_COUNT; ++layer) {
        const Column column = graph.at(static_cast<Layer>(layer));
        if (!column.empty()) {
            layout.columns.push_back(static_cast<Layer>(layer));
            columns.push_back(column);
            numberRows(column, rows);
            longest = std::max(longest, column.size());
        }
    }
    for (int i = 0; i < SWEEPS; ++i) {
        sweep(graph, columns, rows, i % 2 == 0);
    }
    layout.places.resize(graph.nodes().size());
    const double top = Layout::MARGIN + Layout::HEADER_HEIGHT;
    for (size_t c = 0; c < columns.size(); ++c) {
        const auto missing = static_cast<double>(longest - columns[c].size());
        for (size_t r = 0; r < columns[c].size(); ++r) {
            layout.places[columns[c][r]] = {Layout::MARGIN + static_cast<double>(c) * Layout::COLUMN_STEP,
                                            top + (static_cast<double>(r) + missing / 2) * Layout::ROW_STEP};
        }
    }
    const auto count = static_cast<double>(columns.size());
    layout.width = 2 * Layout::MARGIN + count * Layout::BOX_WIDTH +
                   (count - 1) * (Layout::COLUMN_STEP - Layout::BOX_WIDTH);
    layout.height = top + static_cast<double>(longest) * Layout::ROW_STEP + Layout::MARGIN -
                    (Layout::ROW_STEP - Layout::BOX_HEIGHT);
    return layout;
}

} // namespace tesselctl

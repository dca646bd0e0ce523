#include "graph/Drawings.h"

#include "text/Display.h"

namespace tesselctl {
namespace {

/** The strokes of a tree. */
struct Strokes
{
    const char* branch;
    const char* lastBranch;
    const char* trunk;
};

constexpr Strokes UNICODE_STROKES = {"\u251c\u2500 ", "\u2514\u2500 ", "\u2502  "};
constexpr Strokes ASCII_STROKES = {"|- ", "`- ", "|  "};

class TreeDrawing
{
public:
    TreeDrawing(const Graph& graph, bool forward, const Strokes& strokes)
        : m_graph(graph), m_forward(forward), m_strokes(strokes)
    {
    }

    std::string draw(size_t root)
    {
        m_text = printable(m_graph.nodes()[root].label()) + "\n";
        drawChildren(root, "");
        return m_text;
    }

private:
    void drawChildren(size_t node, const std::string& indent)
    {
        const auto children = m_forward ? m_graph.after(node) : m_graph.before(node);
        for (size_t i = 0; i < children.size(); ++i) {
            const bool isLast = i + 1 == children.size();
            m_text += indent + (isLast ? m_strokes.lastBranch : m_strokes.branch) +
                      printable(m_graph.nodes()[children[i]].label()) + "\n";
            drawChildren(children[i], indent + (isLast ? "   " : m_strokes.trunk));
        }
    }

    const Graph& m_graph;
    bool m_forward;
    const Strokes& m_strokes;
    std::string m_text;
};

} // namespace

std::string drawTree(const Graph& graph, size_t root, bool unicode)
{
    const bool forward = graph.nodes()[root].layer != Layer::UNIT;
    return TreeDrawing(graph, forward, unicode ? UNICODE_STROKES : ASCII_STROKES).draw(root);
}

} // namespace tesselctl

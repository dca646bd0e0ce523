#include "graph/Graph.h"

#include <algorithm>

namespace tesselctl {

const char* titleOf(Layer layer)
{
    static const std::array<const char*, LAYER_COUNT> TITLES = {
        "initiators", "hosts", "host groups", "mapping views", "LUN groups", "LUNs and snapshots"};
    return TITLES.at(static_cast<size_t>(layer));
}

std::string Node::label() const
{
    return name.empty() ? shortLabel() : shortLabel() + " (" + name + ")";
}

size_t Graph::add(const Node& node)
{
    const auto found = std::find_if(m_nodes.begin(), m_nodes.end(), [&](const Node& other) {
        return other.type == node.type && other.id == node.id;
    });
    if (found != m_nodes.end()) {
        return static_cast<size_t>(found - m_nodes.begin());
    }
    m_nodes.push_back(node);
    return m_nodes.size() - 1;
}

void Graph::link(size_t one, size_t other)
{
    const bool inOrder = m_nodes[one].layer < m_nodes[other].layer;
    const auto edge = inOrder ? std::make_pair(one, other) : std::make_pair(other, one);
    if (std::find(m_edges.begin(), m_edges.end(), edge) == m_edges.end()) {
        m_edges.push_back(edge);
    }
}

std::vector<size_t> Graph::after(size_t node) const
{
    std::vector<size_t> result;
    for (const auto& edge : m_edges) {
        if (edge.first == node) {
            result.push_back(edge.second);
        }
    }
    return result;
}

std::vector<size_t> Graph::before(size_t node) const
{
    std::vector<size_t> result;
    for (const auto& edge : m_edges) {
        if (edge.second == node) {
            result.push_back(edge.first);
        }
    }
    return result;
}

std::vector<size_t> Graph::at(Layer layer) const
{
    std::vector<size_t> result;
    for (size_t i = 0; i < m_nodes.size(); ++i) {
        if (m_nodes[i].layer == layer) {
            result.push_back(i);
        }
    }
    return result;
}

} // namespace tesselctl

#ifndef GRAPH_GRAPH_H
#define GRAPH_GRAPH_H

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tesselctl {

/** The stages on the way from an initiator to what its host sees. */
enum class Layer : size_t
{
    INITIATOR,
    HOST,
    HOST_GROUP,
    VIEW,
    LUN_GROUP,
    UNIT ///< LUN or snapshot
};
constexpr size_t LAYER_COUNT = 6;

/** "initiators", "hosts" ... */
const char* titleOf(Layer layer);

struct Node
{
    Layer layer;
    std::string type; ///< "LUN group"
    std::string id;
    std::string name;

    /** "LUN group 4 (backup)" */
    std::string label() const;
    /** "LUN group 4" */
    std::string shortLabel() const { return type + " " + id; }
};

/** Objects of the array and what binds them; edges run from the initiators to the LUNs. */
class Graph
{
public:
    /** The node of this type and ID, made when it is not there. */
    size_t add(const Node& node);
    /** An edge between neighbouring layers, in whichever order the ends are given. */
    void link(size_t one, size_t other);

    const std::vector<Node>& nodes() const { return m_nodes; }
    const std::vector<std::pair<size_t, size_t>>& edges() const { return m_edges; }
    /** Neighbours one layer further on, or one layer back. */
    std::vector<size_t> after(size_t node) const;
    std::vector<size_t> before(size_t node) const;
    std::vector<size_t> at(Layer layer) const;

private:
    std::vector<Node> m_nodes;
    std::vector<std::pair<size_t, size_t>> m_edges;
};

} // namespace tesselctl

#endif

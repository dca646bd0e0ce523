#include "graph/OwnObjects.h"

#include "attach/DetachEffect.h"
#include "text/Display.h"

namespace tesselctl {
namespace {

constexpr std::array<const char*, 3> TITLES = {"host group", "view", "LUN group"};
constexpr std::array<const char*, 3> MEMBERS = {"hostGroup", "view", "lunGroup"};

/** The longest chain of nodes with names of the host's own that begins behind a node. */
std::vector<size_t> ownAfter(const Graph& graph, size_t node, const std::string& host)
{
    std::vector<size_t> longest;
    for (const size_t next : graph.after(node)) {
        if (graph.nodes()[next].layer == Layer::UNIT || !isOwnName(graph.nodes()[next].name, host)) {
            continue;
        }
        std::vector<size_t> chain = ownAfter(graph, next, host);
        chain.insert(chain.begin(), next);
        longest = chain.size() > longest.size() ? chain : longest;
    }
    return longest;
}

} // namespace

OwnObjects::OwnObjects(const Graph& graph, size_t host)
    : m_graph(graph), m_nodes(ownAfter(graph, host, graph.nodes()[host].id))
{
}

std::string OwnObjects::text() const
{
    if (m_nodes.empty()) {
        return "";
    }
    std::string text = "\nThe host's own, by which attaches show it disks:\n";
    for (size_t i = 0; i < COUNT; ++i) {
        text += i < m_nodes.size() ? "  ok       " + printable(m_graph.nodes()[m_nodes[i]].label()) + "\n"
                                   : std::string("  MISSING  ") + TITLES.at(i) + "\n";
    }
    return text + (m_nodes.size() < COUNT
                       ? "An attach was not finished: the next one makes what is missing.\n"
                       : "");
}

Json::Value OwnObjects::json() const
{
    Json::Value own(Json::objectValue);
    for (size_t i = 0; i < COUNT; ++i) {
        own[MEMBERS.at(i)] = i < m_nodes.size() ? Json::Value(m_graph.nodes()[m_nodes[i]].id) : Json::Value();
    }
    return own;
}

} // namespace tesselctl

#include "graph/Visibility.h"

#include "text/Words.h"

#include <algorithm>
#include <set>

namespace tesselctl {
namespace {

using Nodes = std::vector<size_t>;

bool isInitiator(const Node& node)
{
    return node.layer == Layer::INITIATOR;
}

class Examination
{
public:
    Examination(const Graph& graph, size_t from, size_t to) : m_graph(graph), m_from(from), m_to(to)
    {
        // Everything that stands on the way from each end, by layer.
        collect(from, true, m_ahead);
        collect(to, false, m_back);
    }

    Visibility result()
    {
        m_result.isVisible = std::count(ahead(Layer::UNIT).begin(), ahead(Layer::UNIT).end(), m_to) != 0;
        tellAhead();
        if (!m_result.isVisible) {
            tellBack();
            findRemedies();
        }
        return m_result;
    }

private:
    using Layers = std::array<Nodes, LAYER_COUNT>;

    void collect(size_t node, bool forward, Layers& layers)
    {
        Nodes& layer = layers.at(static_cast<size_t>(m_graph.nodes()[node].layer));
        if (std::find(layer.begin(), layer.end(), node) != layer.end()) {
            return;
        }
        layer.push_back(node);
        for (const size_t next : forward ? m_graph.after(node) : m_graph.before(node)) {
            collect(next, forward, layers);
        }
    }

    const Nodes& ahead(Layer layer) const { return m_ahead.at(static_cast<size_t>(layer)); }
    const Nodes& back(Layer layer) const { return m_back.at(static_cast<size_t>(layer)); }
    std::string label(size_t node) const { return m_graph.nodes()[node].label(); }
    std::string id(size_t node) const { return shellWord(m_graph.nodes()[node].id); }

    void tell(bool stands, const std::string& text) { m_result.links.push_back({stands, text}); }

    /** On a way that stands only what leads to the object is told; else everything that was found. */
    bool matters(size_t node) const
    {
        const Nodes& nodes = back(m_graph.nodes()[node].layer);
        return !m_result.isVisible || m_graph.nodes()[node].layer <= Layer::HOST ||
               std::find(nodes.begin(), nodes.end(), node) != nodes.end();
    }

    void tellLinks(Layer layer, const std::string& stands, const std::string& missing)
    {
        for (const size_t node : ahead(layer)) {
            if (!matters(node)) {
                continue;
            }
            Nodes next = m_graph.after(node);
            if (layer == Layer::LUN_GROUP) {
                next.erase(std::remove_if(next.begin(), next.end(), [&](size_t n) { return n != m_to; }),
                           next.end());
            }
            for (const size_t other : next) {
                if (matters(other)) {
                    tell(true, label(node) + " " + stands + " " + label(other));
                }
            }
            if (next.empty()) {
                tell(false, label(node) + " " + missing);
            }
        }
    }

    void tellAhead()
    {
        tellLinks(Layer::INITIATOR, "is bound to", "is bound to no host");
        tellLinks(Layer::HOST, "is in", "is in no host group");
        tellLinks(Layer::HOST_GROUP, "is in", "is in no mapping view");
        tellLinks(Layer::VIEW, "holds", "holds no LUN group");
        tellLinks(Layer::LUN_GROUP, "holds", "does not hold " + label(m_to));
    }

    /** What stands on the LUN's own side and does not reach the host. */
    void tellBack()
    {
        if (back(Layer::LUN_GROUP).empty()) {
            tell(false, label(m_to) + " is in no LUN group");
        }
        for (const size_t group : back(Layer::LUN_GROUP)) {
            tell(true, label(m_to) + " is in " + label(group));
            if (m_graph.before(group).empty()) {
                tell(false, label(group) + " is in no mapping view");
            }
            for (const size_t view : m_graph.before(group)) {
                tell(true, label(group) + " is in " + label(view));
                tellHostGroups(view);
            }
        }
    }

    void tellHostGroups(size_t view)
    {
        if (m_graph.before(view).empty()) {
            tell(false, label(view) + " holds no host group");
        }
        for (const size_t hostGroup : m_graph.before(view)) {
            const Nodes& ours = ahead(Layer::HOST_GROUP);
            const bool fits =
                ahead(Layer::HOST).empty() || std::count(ours.begin(), ours.end(), hostGroup) != 0;
            tell(fits,
                 label(view) + " holds " + label(hostGroup) + (fits ? "" : ", which the host is not in"));
        }
    }

    void remedy(const std::string& command, const std::string& effect = "")
    {
        m_result.remedies.push_back({"tesselctl " + command, effect});
    }

    void findRemedies()
    {
        const Node& from = m_graph.nodes()[m_from];
        const Node& to = m_graph.nodes()[m_to];
        const bool isIscsi = isInitiator(from) && from.type == "initiator";
        if (isInitiator(from) && ahead(Layer::HOST).empty()) {
            remedy("initiator " + std::string(isIscsi ? "iscsi" : "fc") + " add " + id(m_from) +
                       " --host HOST",
                   "then ask again");
        } else {
            singleLinks(to);
            wayThroughNew(to);
        }
        if (isIscsi) {
            remedy("attach " + (to.type == "LUN" ? std::string("lun ") : std::string("snapshot ")) +
                       id(m_to) + " --initiator " + id(m_from),
                   "puts it into the LUN group of the host's own, and makes what is missing for that");
        }
    }

    /** Views and groups that exist are used where only a group or a view between them is missing. */
    void wayThroughNew(const Node& to)
    {
        const std::string member = (to.type == "LUN" ? " --lun " : " --snapshot ") + id(m_to);
        for (const size_t view : back(Layer::LUN_GROUP).empty() ? ahead(Layer::VIEW) : Nodes()) {
            if (m_graph.after(view).empty()) {
                remedy("lungroup create --name NAME", "then 'tesselctl lungroup add LUNGROUP" + member +
                                                          "' and 'tesselctl view add " + id(view) +
                                                          " --lungroup LUNGROUP'");
            }
        }
        for (const size_t view : ahead(Layer::HOST_GROUP).empty() ? back(Layer::VIEW) : Nodes()) {
            for (const size_t host : m_graph.before(view).empty() ? ahead(Layer::HOST) : Nodes()) {
                remedy("hostgroup create --name NAME", "then 'tesselctl hostgroup add HOSTGROUP --host " +
                                                           id(host) + "' and 'tesselctl view add " +
                                                           id(view) + " --hostgroup HOSTGROUP'");
            }
        }
        if (!ahead(Layer::VIEW).empty() || !back(Layer::VIEW).empty()) {
            return;
        }
        for (const size_t hostGroup : ahead(Layer::HOST_GROUP)) {
            for (const size_t group : back(Layer::LUN_GROUP)) {
                remedy("view create --name NAME",
                       "then 'tesselctl view add VIEW --hostgroup " + id(hostGroup) +
                           "' and 'tesselctl view add VIEW --lungroup " + id(group) + "'");
            }
        }
    }

    /** One command that closes the way. */
    void singleLinks(const Node& to)
    {
        for (const size_t view : ahead(Layer::VIEW)) {
            for (const size_t group : m_graph.after(view).empty() ? back(Layer::LUN_GROUP) : Nodes()) {
                remedy("view add " + id(view) + " --lungroup " + id(group),
                       "the host then sees everything in " + label(group));
            }
        }
        for (const size_t view : back(Layer::VIEW)) {
            for (const size_t group : m_graph.before(view).empty() ? ahead(Layer::HOST_GROUP) : Nodes()) {
                remedy("view add " + id(view) + " --hostgroup " + id(group),
                       "every host of " + label(group) + " then sees it");
            }
            for (const size_t group : m_graph.before(view)) {
                for (const size_t host : ahead(Layer::HOST)) {
                    remedy("hostgroup add " + id(group) + " --host " + id(host),
                           "the host then sees everything that " + label(group) + " sees");
                }
            }
        }
        for (const size_t group : ahead(Layer::LUN_GROUP)) {
            remedy("lungroup add " + id(group) + (to.type == "LUN" ? " --lun " : " --snapshot ") + id(m_to),
                   "every host that sees " + label(group) + " then sees it");
        }
    }

    const Graph& m_graph;
    size_t m_from;
    size_t m_to;
    Layers m_ahead;
    Layers m_back;
    Visibility m_result;
};

} // namespace

Visibility examine(const Graph& graph, size_t from, size_t to)
{
    return Examination(graph, from, to).result();
}

} // namespace tesselctl

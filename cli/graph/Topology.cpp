#include "graph/ArrayWalk.h"
#include "graph/Drawings.h"

namespace tesselctl {
namespace {

struct Start
{
    const char* option;
    const char* value;
    const char* help;
    size_t (*walk)(ArrayWalk&, const std::string& id);
};

size_t walkUnit(ArrayWalk& walk, size_t kind, const std::string& id)
{
    return walk.fromUnit(attachables()[kind], id);
}

constexpr std::array<Start, 4> STARTS = {{
    {"--initiator", "IQN|WWPN", "begin with this initiator",
     [](ArrayWalk& walk, const std::string& id) { return walk.fromInitiator(id, Members::READ); }},
    {"--host", "ID", "begin with this host",
     [](ArrayWalk& walk, const std::string& id) { return walk.fromHost(id, Members::READ); }},
    {"--lun", "ID", "begin with this LUN and go back to the host groups",
     [](ArrayWalk& walk, const std::string& id) { return walkUnit(walk, 0, id); }},
    {"--snapshot", "ID", "begin with this snapshot and go back to the host groups",
     [](ArrayWalk& walk, const std::string& id) { return walkUnit(walk, 1, id); }},
}};

std::string drawn(const Context& context, const Graph& graph, size_t root)
{
    const std::string format = context.text("--format", "tree");
    if (format == "dot") {
        return drawDot(graph);
    }
    if (format == "svg") {
        return drawSvg(graph);
    }
    return drawTree(graph, root, context.has("--ascii"));
}

void topology(Context& context)
{
    if (context.printer().isJson() && context.has("--format")) {
        throw UsageError("--format does not go with --output json");
    }
    Graph graph;
    ArrayWalk walk(context.session(), graph);
    for (const auto& start : STARTS) {
        if (context.has(start.option)) {
            const size_t root = start.walk(walk, context.text(start.option));
            context.printer().result(drawn(context, graph, root), graphJson(graph));
        }
    }
}

} // namespace

Commands topologyCommands()
{
    Command command{{"topology"}, "draw what binds initiators, hosts, views and LUNs", {}, {}, {}, topology};
    for (const auto& start : STARTS) {
        command.options.push_back({start.option, start.value, start.help});
        command.exactlyOneOf.push_back(start.option);
    }
    command.options.push_back(
        {"--format", "FORM", "tree (default), dot for Graphviz, or svg", false, {"tree", "dot", "svg"}});
    command.options.push_back({"--ascii", "", "draw the tree without box characters"});
    return {command};
}

} // namespace tesselctl

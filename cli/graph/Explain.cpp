#include "disk/Initiator.h"
#include "graph/ArrayWalk.h"
#include "graph/OwnObjects.h"
#include "graph/Visibility.h"
#include "text/Display.h"

namespace tesselctl {
namespace {

size_t walkFromHost(Context& context, ArrayWalk& walk)
{
    if (context.has("--host")) {
        return walk.fromHost(context.text("--host"), Members::LEAVE_OUT);
    }
    const std::string initiator = chosenInitiator(context);
    try {
        return walk.fromInitiator(initiator, Members::LEAVE_OUT);
    } catch (const NotFound& error) {
        throw NotFound(std::string(error.what()) + "; register it with 'tesselctl initiator " +
                           (isIscsiName(initiator) ? "iscsi" : "fc") + " create " + initiator + "'",
                       error.arrayCode());
    }
}

/** The node of the host, where there is one. */
std::optional<size_t> hostOf(const Graph& graph, size_t from)
{
    if (graph.nodes()[from].layer == Layer::HOST) {
        return from;
    }
    const auto hosts = graph.after(from);
    return hosts.empty() ? std::nullopt : std::make_optional(hosts[0]);
}

Json::Value jsonOf(const Visibility& visibility, bool isVisible, const Graph& graph, size_t from, size_t to)
{
    Json::Value json(Json::objectValue);
    json["visible"] = isVisible;
    json["from"] = validUtf8(graph.nodes()[from].shortLabel());
    json["object"] = validUtf8(graph.nodes()[to].shortLabel());
    json["links"] = Json::Value(Json::arrayValue);
    json["remedies"] = Json::Value(Json::arrayValue);
    for (const auto& link : visibility.links) {
        Json::Value entry(Json::objectValue);
        entry["stands"] = link.stands;
        entry["text"] = validUtf8(link.text);
        json["links"].append(entry);
    }
    for (const auto& remedy : visibility.remedies) {
        Json::Value entry(Json::objectValue);
        entry["command"] = validUtf8(remedy.command);
        entry["effect"] = validUtf8(remedy.effect);
        json["remedies"].append(entry);
    }
    return json;
}

std::string textOf(const Visibility& visibility, bool isVisible, const Graph& graph, size_t from, size_t to)
{
    std::string text = printable(graph.nodes()[to].label()) +
                       (isVisible ? " is visible to " : " is NOT visible to ") +
                       printable(graph.nodes()[from].shortLabel()) + "\n\n";
    for (const auto& link : visibility.links) {
        text += (link.stands ? "  ok       " : "  MISSING  ") + printable(link.text) + "\n";
    }
    if (visibility.isVisible != isVisible) {
        text += "  The links say otherwise than the array's own list of what the host sees: try again.\n";
    }
    text += visibility.remedies.empty() ? "" : "\nAny one of these would make it visible:\n";
    for (const auto& remedy : visibility.remedies) {
        text += "  " + printable(remedy.command) + "\n";
        text += remedy.effect.empty() ? "" : "      " + printable(remedy.effect) + "\n";
    }
    return text;
}

void explain(Context& context, const Attachable& object)
{
    if (context.has("--host") && (context.has("--initiator") || context.has("--initiator-file"))) {
        throw UsageError("--host does not go with --initiator");
    }
    const std::string id = context.text("ID");
    Graph graph;
    ArrayWalk walk(context.session(), graph);
    const size_t to = walk.fromUnit(object, id);
    const size_t from = walkFromHost(context, walk);
    const Visibility visibility = examine(graph, from, to);
    // The array has the last word: the host sees what the array lists for it.
    const std::optional<size_t> host = hostOf(graph, from);
    const bool isVisible = host && object.isSeenByHost(context.session(), id, graph.nodes()[*host].id);
    std::string text = textOf(visibility, isVisible, graph, from, to);
    Json::Value json = jsonOf(visibility, isVisible, graph, from, to);
    if (host) {
        const OwnObjects own(graph, *host);
        text += own.text();
        json["own"] = own.json();
    }
    context.printer().result(text, json);
    context.endWith(isVisible ? ExitCode::SUCCESS : ExitCode::FAILURE);
}

} // namespace

Commands explainCommands()
{
    std::vector<Option> options = anyInitiatorOptions();
    options.push_back({"--host", "ID", "the host itself, instead of an initiator"});
    return forEachAttachable("explain", "tell why a host sees, or does not see,", options, explain);
}

} // namespace tesselctl

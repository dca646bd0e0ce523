#include "graph/Drawings.h"

#include "text/Display.h"

namespace tesselctl {
namespace {

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : printable(text)) {
        result += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return result + "\"";
}

} // namespace

std::string drawDot(const Graph& graph)
{
    std::string text =
        "digraph topology {\n  rankdir=LR;\n  node [shape=box, style=rounded, fontname=\"sans-serif\"];\n";
    for (size_t layer = 0; layer < LAYER_COUNT; ++layer) {
        std::string rank;
        for (const size_t i : graph.at(static_cast<Layer>(layer))) {
            text += "  n" + std::to_string(i) + " [label=" + quoted(graph.nodes()[i].label()) + "];\n";
            rank += " n" + std::to_string(i) + ";";
        }
        text += rank.empty() ? "" : "  { rank=same;" + rank + " }\n";
    }
    for (const auto& [from, to] : graph.edges()) {
        text += "  n" + std::to_string(from) + " -> n" + std::to_string(to) + ";\n";
    }
    return text + "}\n";
}

Json::Value graphJson(const Graph& graph)
{
    Json::Value json(Json::objectValue);
    json["nodes"] = Json::Value(Json::arrayValue);
    json["edges"] = Json::Value(Json::arrayValue);
    for (const auto& node : graph.nodes()) {
        Json::Value entry(Json::objectValue);
        entry["type"] = node.type;
        entry["id"] = validUtf8(node.id);
        entry["name"] = node.name.empty() ? Json::Value() : Json::Value(validUtf8(node.name));
        json["nodes"].append(entry);
    }
    for (const auto& [from, to] : graph.edges()) {
        Json::Value entry(Json::objectValue);
        entry["from"] = Json::UInt64(from);
        entry["to"] = Json::UInt64(to);
        json["edges"].append(entry);
    }
    return json;
}

} // namespace tesselctl

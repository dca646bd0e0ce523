#include "graph/Drawings.h"

#include "graph/Layout.h"
#include "text/Display.h"

#include <cmath>

namespace tesselctl {
namespace {

constexpr size_t CHARACTERS_IN_BOX = 25;
constexpr std::array<const char*, LAYER_COUNT> FILLS = {"#e8eef7", "#dcebe1", "#dcebe1",
                                                        "#f6efd9", "#efe3f3", "#efe3f3"};

std::string xml(const std::string& text)
{
    std::string result;
    for (const char c : printable(text)) {
        switch (c) {
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '&':
            result += "&amp;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string number(double value)
{
    return std::to_string(static_cast<long>(std::lround(value)));
}

/** The middle is cut out: names of initiators and of generated groups differ at their ends. */
std::string shortened(const std::string& text)
{
    std::string whole = printable(text);
    if (cutTo(whole, CHARACTERS_IN_BOX) == whole) {
        return whole;
    }
    // Cut between characters, from the front and from the back.
    size_t tail = whole.size() - CHARACTERS_IN_BOX / 2;
    while ((static_cast<unsigned char>(whole[tail]) & 0xC0) == 0x80) {
        ++tail;
    }
    size_t head = CHARACTERS_IN_BOX / 2 - 1;
    while ((static_cast<unsigned char>(whole[head]) & 0xC0) == 0x80) {
        --head;
    }
    return whole.substr(0, head) + "\u2026" + whole.substr(tail);
}

std::string textAt(double x, double y, const std::string& style, const std::string& text)
{
    return "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" " + style + ">" + xml(text) + "</text>";
}

std::string curve(const Point& from, const Point& to)
{
    const double middle = Layout::BOX_HEIGHT / 2;
    const double begin = from.x + Layout::BOX_WIDTH;
    const double bend = (to.x - begin) / 2;
    return "<path d=\"M" + number(begin) + " " + number(from.y + middle) + " C" + number(begin + bend) + " " +
           number(from.y + middle) + " " + number(to.x - bend) + " " + number(to.y + middle) + " " +
           number(to.x) + " " + number(to.y + middle) + "\"/>\n";
}

std::string box(const Node& node, const Point& place)
{
    const bool isInitiator = node.layer == Layer::INITIATOR;
    // The ID of an initiator is its name, too long to stand beside the type.
    const std::string first = isInitiator ? node.type : node.shortLabel();
    const std::string second = isInitiator ? node.id : node.name;
    std::string text = "<g><title>" + xml(node.label()) + "</title><rect x=\"" + number(place.x) + "\" y=\"" +
                       number(place.y) + "\" width=\"" + number(Layout::BOX_WIDTH) + "\" height=\"" +
                       number(Layout::BOX_HEIGHT) + "\" rx=\"6\" fill=\"" +
                       FILLS.at(static_cast<size_t>(node.layer)) + "\" stroke=\"#5b6770\"/>";
    const double middle = place.x + Layout::BOX_WIDTH / 2;
    const double firstLine = second.empty() ? place.y + 27 : place.y + 19;
    text += textAt(middle, firstLine, "text-anchor=\"middle\" font-weight=\"bold\"", shortened(first));
    if (!second.empty()) {
        text += textAt(middle, place.y + 36, "text-anchor=\"middle\"", shortened(second));
    }
    return text + "</g>\n";
}

} // namespace

std::string drawSvg(const Graph& graph)
{
    const Layout layout = layOut(graph);
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
        number(layout.width) + "\" height=\"" + number(layout.height) + "\" viewBox=\"0 0 " +
        number(layout.width) + " " + number(layout.height) +
        "\" font-family=\"sans-serif\" font-size=\"13\" fill=\"#1c2329\">\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    for (size_t i = 0; i < layout.columns.size(); ++i) {
        const double x =
            Layout::MARGIN + static_cast<double>(i) * Layout::COLUMN_STEP + Layout::BOX_WIDTH / 2;
        text += textAt(x, Layout::MARGIN + 12, "text-anchor=\"middle\" fill=\"#5b6770\"",
                       titleOf(layout.columns[i])) +
                "\n";
    }
    text += "<g fill=\"none\" stroke=\"#8a96a0\" stroke-width=\"1.5\">\n";
    for (const auto& [from, to] : graph.edges()) {
        text += curve(layout.places[from], layout.places[to]);
    }
    text += "</g>\n";
    for (size_t i = 0; i < graph.nodes().size(); ++i) {
        text += box(graph.nodes()[i], layout.places[i]);
    }
    return text + "</svg>\n";
}

} // namespace tesselctl

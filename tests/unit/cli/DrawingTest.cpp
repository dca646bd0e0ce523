#include "graph/Drawings.h"
#include "graph/Layout.h"
#include "output/Printer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tesselctl;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/** Two hosts of one group see a LUN; the third host is by itself. */
class Drawing : public testing::Test
{
protected:
    Drawing()
    {
        graph.link(lunGroup, lun); // in any order
        graph.link(view, hostGroup);
        graph.link(web1, hostGroup);
        graph.link(web2, hostGroup);
        graph.link(view, lunGroup);
        graph.link(hostGroup, web1); // once more
    }

    Graph graph;
    size_t lun = graph.add({Layer::UNIT, "LUN", "17", "db \"a\\b\" <&>"});
    size_t web1 = graph.add({Layer::HOST, "host", "1", "web1"});
    size_t web2 = graph.add({Layer::HOST, "host", "2", ""});
    size_t alone = graph.add({Layer::HOST, "host", "3", "alone\x1B"});
    size_t hostGroup = graph.add({Layer::HOST_GROUP, "host group", "5", "web"});
    size_t view = graph.add({Layer::VIEW, "mapping view", "6", "view"});
    size_t lunGroup =
        graph.add({Layer::LUN_GROUP, "LUN group", "4", "a LUN group with a name that is far too long"});
};

TEST_F(Drawing, aGraphHasEveryObjectAndLinkOnce)
{
    EXPECT_EQ(graph.add({Layer::HOST, "host", "2", "named later"}), web2);
    EXPECT_NE(graph.add({Layer::HOST_GROUP, "host group", "2", ""}), web2);
    EXPECT_EQ(graph.edges().size(), 5U);
    EXPECT_THAT(graph.after(hostGroup), ElementsAre(view));
    EXPECT_THAT(graph.before(hostGroup), ElementsAre(web1, web2));
    EXPECT_THAT(graph.after(lun), ElementsAre());
    EXPECT_THAT(graph.at(Layer::HOST), ElementsAre(web1, web2, alone));
    EXPECT_THAT(graph.at(Layer::INITIATOR), ElementsAre());
    EXPECT_EQ(graph.nodes()[web1].label(), "host 1 (web1)");
    EXPECT_EQ(graph.nodes()[web2].label(), "host 2");
    EXPECT_STREQ(titleOf(Layer::UNIT), "LUNs and snapshots");
}

TEST_F(Drawing, aTreeRunsAwayFromItsRoot)
{
    EXPECT_EQ(drawTree(graph, hostGroup, true),
              "host group 5 (web)\n"
              "`-mapping view 6 (view)\n"
              "  `-LUN group 4 (a LUN group with a name that is far too long)\n"
              "    `-LUN 17 (db \"a\\b\" <&>)\n");
    EXPECT_THAT(drawTree(graph, lun, true), HasSubstr("      |-host 1 (web1)\n"));
    EXPECT_THAT(drawTree(graph, lun, true), HasSubstr("      `-host 2\n"));
    EXPECT_EQ(drawTree(graph, alone, true), "host 3 (alone\\x1B)\n");
}

TEST_F(Drawing, graphvizGetsQuotedLabelsAndRanks)
{
    EXPECT_EQ(
        drawDot(graph),
        "digraph topology {\n  rankdir=LR;\n  node [shape=box, style=rounded, fontname=\"sans-serif\"];\n"
        "  n1 [label=\"host 1 (web1)\"];\n"
        "  n2 [label=\"host 2\"];\n"
        "  n3 [label=\"host 3 (alone\\\\x1B)\"];\n"
        "  { rank=same; n1; n2; n3; }\n"
        "  n4 [label=\"host group 5 (web)\"];\n"
        "  { rank=same; n4; }\n"
        "  n5 [label=\"mapping view 6 (view)\"];\n"
        "  { rank=same; n5; }\n"
        "  n6 [label=\"LUN group 4 (a LUN group with a name that is far too long)\"];\n"
        "  { rank=same; n6; }\n"
        "  n0 [label=\"LUN 17 (db \\\"a\\\\b\\\" <&>)\"];\n"
        "  { rank=same; n0; }\n"
        "  n6 -> n0;\n  n4 -> n5;\n  n1 -> n4;\n  n2 -> n4;\n  n5 -> n6;\n}\n");
}

TEST_F(Drawing, jsonHasNodesAndEdgesByTheirPlace)
{
    const Json::Value json = graphJson(graph);
    ASSERT_EQ(json["nodes"].size(), 7U);
    EXPECT_EQ(json["nodes"][4]["type"].asString(), "host group");
    EXPECT_EQ(json["nodes"][4]["id"].asString(), "5");
    EXPECT_EQ(json["nodes"][4]["name"].asString(), "web");
    EXPECT_TRUE(json["nodes"][2]["name"].isNull());
    ASSERT_EQ(json["edges"].size(), 5U);
    EXPECT_EQ(json["edges"][0]["from"].asUInt64(), lunGroup);
    EXPECT_EQ(json["edges"][0]["to"].asUInt64(), lun);
}

TEST_F(Drawing, jsonOfNothingHasEmptyLists)
{
    EXPECT_EQ(jsonText(graphJson(Graph()), false), R"({"edges":[],"nodes":[]})");
}

TEST_F(Drawing, columnsAreLayersAndBoxesStandApart)
{
    const Layout layout = layOut(graph);
    EXPECT_THAT(layout.columns,
                ElementsAre(Layer::HOST, Layer::HOST_GROUP, Layer::VIEW, Layer::LUN_GROUP, Layer::UNIT));
    EXPECT_EQ(layout.places[web1].x, 24);
    EXPECT_EQ(layout.places[web1].y, 60);
    EXPECT_EQ(layout.places[web2].y, 120);
    EXPECT_EQ(layout.places[alone].y, 180);
    EXPECT_EQ(layout.places[hostGroup].x, 24 + 290);
    EXPECT_EQ(layout.places[hostGroup].y, 120); // in the middle of three
    EXPECT_EQ(layout.places[lun].x, 24 + 4 * 290);
    EXPECT_EQ(layout.width, 24 + 4 * 290 + 212 + 24);
    EXPECT_EQ(layout.height, 60 + 2 * 60 + 44 + 24);
}

TEST(Layout, putsNeighboursBesideEachOther)
{
    Graph graph;
    const size_t first = graph.add({Layer::HOST, "host", "1", ""});
    const size_t second = graph.add({Layer::HOST, "host", "2", ""});
    const size_t ofSecond = graph.add({Layer::HOST_GROUP, "host group", "1", ""});
    const size_t ofFirst = graph.add({Layer::HOST_GROUP, "host group", "2", ""});
    graph.link(second, ofSecond);
    graph.link(first, ofFirst);
    const Layout layout = layOut(graph);
    EXPECT_EQ(layout.places[first].y, layout.places[ofFirst].y);
    EXPECT_EQ(layout.places[second].y, layout.places[ofSecond].y);
    EXPECT_NE(layout.places[first].y, layout.places[second].y);
}

TEST_F(Drawing, aPictureIsWellFormedAndShortensNames)
{
    const std::string svg = drawSvg(graph);
    EXPECT_THAT(svg, HasSubstr("<title>LUN 17 (db &quot;a\\b&quot; &lt;&amp;&gt;)</title>"));
    EXPECT_THAT(svg,
                HasSubstr("<text x=\"130\" y=\"36\" text-anchor=\"middle\" fill=\"#5b6770\">hosts</text>"));
    EXPECT_THAT(
        svg,
        HasSubstr("<text x=\"420\" y=\"36\" text-anchor=\"middle\" fill=\"#5b6770\">host groups</text>"));
    EXPECT_THAT(svg, HasSubstr("<path d=\"M236 82 C275 82 275 142 314 142\"/>"));
    EXPECT_THAT(svg,
                HasSubstr("<rect x=\"24\" y=\"60\" width=\"212\" height=\"44\" rx=\"6\" fill=\"#dcebe1\""));
    EXPECT_THAT(svg, HasSubstr(">a LUN group\u2026"
                               "far too long<"));
    EXPECT_THAT(
        svg, HasSubstr("<text x=\"130\" y=\"79\" text-anchor=\"middle\" font-weight=\"bold\">host 1</text>"));
    EXPECT_THAT(svg, HasSubstr("<text x=\"130\" y=\"96\" text-anchor=\"middle\">web1</text>"));
    EXPECT_THAT(
        svg,
        HasSubstr("<text x=\"130\" y=\"147\" text-anchor=\"middle\" font-weight=\"bold\">host 2</text>"));
    EXPECT_THAT(svg, Not(HasSubstr("\x1B")));
    EXPECT_THAT(svg, testing::EndsWith("</g>\n</svg>\n"));
    EXPECT_THAT(svg, HasSubstr("<g fill=\"none\" stroke=\"#8a96a0\" stroke-width=\"1.5\">\n<path"));
}

TEST(Picture, cutsBetweenCharacters)
{
    Graph graph;
    std::string name;
    for (int i = 0; i < 30; ++i) {
        name += "\xC3\xA4";
    }
    graph.add({Layer::HOST, "host", "1", name});
    graph.add({Layer::HOST, "host", "2", name + "z"});
    EXPECT_THAT(drawSvg(graph), HasSubstr("\xC3\xA4\u2026\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4z<"));
    EXPECT_THAT(drawSvg(graph), HasSubstr(">\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\u2026\xC3\xA4\xC3\xA4"
                                          "\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4<"));
}

} // namespace

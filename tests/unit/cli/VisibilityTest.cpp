#include "graph/Visibility.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tesselctl;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/** A way from an initiator to a LUN, of which a test leaves something out. */
class Way : public testing::Test
{
protected:
    Graph graph;
    size_t initiator = graph.add({Layer::INITIATOR, "initiator", "iqn.2026-01.example:it's", ""});
    size_t lun = graph.add({Layer::UNIT, "LUN", "17", "db"});

    size_t host() { return graph.add({Layer::HOST, "host", "1", "web1"}); }
    size_t hostGroup() { return graph.add({Layer::HOST_GROUP, "host group", "5", "web"}); }
    size_t view() { return graph.add({Layer::VIEW, "mapping view", "6", ""}); }
    size_t lunGroup() { return graph.add({Layer::LUN_GROUP, "LUN group", "4", "backup"}); }

    void bindUpToView()
    {
        graph.link(initiator, host());
        graph.link(host(), hostGroup());
        graph.link(hostGroup(), view());
    }

    static std::vector<std::string> textsOf(const Visibility& visibility)
    {
        std::vector<std::string> texts;
        for (const Link& link : visibility.links) {
            texts.push_back((link.stands ? "+ " : "- ") + link.text);
        }
        return texts;
    }

    static std::vector<std::string> commandsOf(const Visibility& visibility)
    {
        std::vector<std::string> commands;
        for (const Remedy& remedy : visibility.remedies) {
            commands.push_back(remedy.command);
        }
        return commands;
    }
};

constexpr const char* ATTACH = "tesselctl attach lun 17 --initiator 'iqn.2026-01.example:it'\\''s'";

TEST_F(Way, thatStandsIsToldWithoutWhatLeadsElsewhere)
{
    bindUpToView();
    graph.link(view(), lunGroup());
    graph.link(lunGroup(), lun);
    graph.link(lunGroup(), graph.add({Layer::UNIT, "LUN", "18", ""}));
    graph.link(host(), graph.add({Layer::HOST_GROUP, "host group", "9", "other"}));
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_TRUE(visibility.isVisible);
    EXPECT_THAT(visibility.remedies, IsEmpty());
    EXPECT_THAT(textsOf(visibility),
                ElementsAre("+ initiator iqn.2026-01.example:it's is bound to host 1 (web1)",
                            "+ host 1 (web1) is in host group 5 (web)",
                            "+ host group 5 (web) is in mapping view 6",
                            "+ mapping view 6 holds LUN group 4 (backup)",
                            "+ LUN group 4 (backup) holds LUN 17 (db)"));
}

TEST_F(Way, withoutAHostBeginsWithOne)
{
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_FALSE(visibility.isVisible);
    EXPECT_THAT(textsOf(visibility), ElementsAre("- initiator iqn.2026-01.example:it's is bound to no host",
                                                 "- LUN 17 (db) is in no LUN group"));
    EXPECT_THAT(
        commandsOf(visibility),
        ElementsAre("tesselctl initiator iscsi add 'iqn.2026-01.example:it'\\''s' --host HOST", ATTACH));
    EXPECT_EQ(visibility.remedies[0].effect, "then ask again");
}

TEST_F(Way, ofAFibreChannelPortHasNoAttach)
{
    const size_t port = graph.add({Layer::INITIATOR, "FC initiator", "2100001b32000001", ""});
    const size_t snapshot = graph.add({Layer::UNIT, "snapshot", "3", ""});
    EXPECT_THAT(commandsOf(examine(graph, port, snapshot)),
                ElementsAre("tesselctl initiator fc add 2100001b32000001 --host HOST"));
    graph.link(port, host());
    graph.link(host(), hostGroup());
    graph.link(hostGroup(), view());
    graph.link(view(), lunGroup());
    EXPECT_THAT(commandsOf(examine(graph, port, snapshot)),
                ElementsAre("tesselctl lungroup add 4 --snapshot 3"));
}

TEST_F(Way, thatLacksTheLunInItsGroupIsClosedThere)
{
    bindUpToView();
    graph.link(view(), lunGroup());
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_THAT(textsOf(visibility), Contains("- LUN group 4 (backup) does not hold LUN 17 (db)"));
    EXPECT_THAT(commandsOf(visibility), ElementsAre("tesselctl lungroup add 4 --lun 17", ATTACH));
    EXPECT_EQ(visibility.remedies.front().effect, "every host that sees LUN group 4 (backup) then sees it");
}

TEST_F(Way, thatLacksALunGroupInItsViewIsClosedThere)
{
    bindUpToView();
    graph.link(lunGroup(), lun);
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_THAT(textsOf(visibility), Contains("- mapping view 6 holds no LUN group"));
    EXPECT_THAT(textsOf(visibility), Contains("- LUN group 4 (backup) is in no mapping view"));
    EXPECT_THAT(commandsOf(visibility), ElementsAre("tesselctl view add 6 --lungroup 4", ATTACH));
}

TEST_F(Way, toALunWithoutAGroupGetsOne)
{
    bindUpToView();
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_THAT(commandsOf(visibility), ElementsAre("tesselctl lungroup create --name NAME", ATTACH));
    EXPECT_EQ(visibility.remedies.front().effect, "then 'tesselctl lungroup add LUNGROUP --lun 17' and "
                                                  "'tesselctl view add 6 --lungroup LUNGROUP'");
}

TEST_F(Way, throughAViewOfOthersTellsWhoElseWouldSee)
{
    graph.link(initiator, host());
    graph.link(hostGroup(), view());
    graph.link(view(), lunGroup());
    graph.link(lunGroup(), lun);
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_THAT(textsOf(visibility), Contains("- host 1 (web1) is in no host group"));
    EXPECT_THAT(textsOf(visibility), Contains("+ LUN group 4 (backup) is in mapping view 6"));
    EXPECT_THAT(textsOf(visibility),
                Contains("- mapping view 6 holds host group 5 (web), which the host is not in"));
    EXPECT_THAT(commandsOf(visibility), ElementsAre("tesselctl hostgroup add 5 --host 1", ATTACH));
}

TEST_F(Way, throughAViewWithoutHostsGetsThem)
{
    graph.link(initiator, host());
    graph.link(view(), lunGroup());
    graph.link(lunGroup(), lun);
    EXPECT_THAT(textsOf(examine(graph, initiator, lun)), Contains("- mapping view 6 holds no host group"));
    EXPECT_THAT(commandsOf(examine(graph, initiator, lun)),
                ElementsAre("tesselctl hostgroup create --name NAME", ATTACH));
    graph.link(host(), hostGroup());
    EXPECT_THAT(textsOf(examine(graph, initiator, lun)),
                Contains("- host group 5 (web) is in no mapping view"));
    EXPECT_THAT(commandsOf(examine(graph, initiator, lun)),
                ElementsAre("tesselctl view add 6 --hostgroup 5", ATTACH));
}

TEST_F(Way, betweenTwoGroupsNeedsAView)
{
    graph.link(initiator, host());
    graph.link(host(), hostGroup());
    graph.link(lunGroup(), lun);
    const Visibility visibility = examine(graph, initiator, lun);
    EXPECT_THAT(commandsOf(visibility), ElementsAre("tesselctl view create --name NAME", ATTACH));
    EXPECT_EQ(visibility.remedies.front().effect,
              "then 'tesselctl view add VIEW --hostgroup 5' and 'tesselctl view add VIEW --lungroup 4'");
}

TEST_F(Way, mayBeginAtAHost)
{
    const Visibility visibility = examine(graph, host(), lun);
    EXPECT_THAT(textsOf(visibility),
                ElementsAre("- host 1 (web1) is in no host group", "- LUN 17 (db) is in no LUN group"));
    EXPECT_THAT(commandsOf(visibility), IsEmpty());
}

} // namespace

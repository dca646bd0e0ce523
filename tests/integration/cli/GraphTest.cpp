#include "Cli.h"

#include <sstream>
#include <utility>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/** One link of the way that is left out, and what explain must say then. */
struct Gap
{
    const char* name;
    void (*cut)(const MappingTest&, const Words& ids, const Cli&);
    const char* missing;
    const char* remedy; ///< with LUN, HOST ... for the IDs
};

void PrintTo(const Gap& one, std::ostream* stream)
{
    *stream << one.name;
}

class MissingLink : public MappingTest, public ::testing::WithParamInterface<Gap>
{
protected:
    /** The text with the names of objects replaced by their IDs. */
    std::string withIds(std::string text) const
    {
        const std::pair<const char*, std::string> ids[] = {
            {"HOSTGROUP", hostGroup}, {"LUNGROUP", lunGroup}, {"HOST", host},
            {"VIEW", view},           {"LUN", lun},           {"IQN", iqn}};
        for (const auto& [name, id] : ids) {
            const size_t at = text.find(std::string("<") + name + ">");
            if (at != std::string::npos) {
                text.replace(at, std::string(name).size() + 2, id);
            }
        }
        return text;
    }
};

enum Id
{
    LUN_ID,
    HOST_ID,
    LUNGROUP_ID,
    HOSTGROUP_ID,
    VIEW_ID,
    IQN_ID
};

const Gap GAPS[] = {
    {"InitiatorToHost",
     [](const MappingTest&, const Words& ids, const Cli& cli) {
         cli.run({"initiator", "iscsi", "remove", ids[IQN_ID]});
     },
     "is bound to no host", "tesselctl initiator iscsi add <IQN> --host HOST"},
    {"HostToHostGroup",
     [](const MappingTest&, const Words& ids, const Cli& cli) {
         cli.run({"hostgroup", "remove", ids[HOSTGROUP_ID], "--host", ids[HOST_ID]});
     },
     "is in no host group", "tesselctl hostgroup add <HOSTGROUP> --host <HOST>"},
    {"HostGroupToView",
     [](const MappingTest&, const Words& ids, const Cli& cli) {
         cli.run({"view", "remove", ids[VIEW_ID], "--hostgroup", ids[HOSTGROUP_ID]});
     },
     "is in no mapping view", "tesselctl view add <VIEW> --hostgroup <HOSTGROUP>"},
    {"ViewToLunGroup",
     [](const MappingTest&, const Words& ids, const Cli& cli) {
         cli.run({"view", "remove", ids[VIEW_ID], "--lungroup", ids[LUNGROUP_ID]});
     },
     "holds no LUN group", "tesselctl view add <VIEW> --lungroup <LUNGROUP>"},
    {"LunGroupToLun",
     [](const MappingTest&, const Words& ids, const Cli& cli) {
         cli.run({"lungroup", "remove", ids[LUNGROUP_ID], "--lun", ids[LUN_ID]});
     },
     "is in no LUN group", "tesselctl lungroup add <LUNGROUP> --lun <LUN>"},
};

TEST_P(MissingLink, IsNamedByExplainWithTheCommandThatMakesIt)
{
    bindAll();
    GetParam().cut(*this, {lun, host, lunGroup, hostGroup, view, iqn}, cli);
    const Outcome text = expect(1, {"explain", "lun", lun, "--initiator", iqn});
    EXPECT_THAT(text.out, HasSubstr("is NOT visible to"));
    EXPECT_THAT(text.out, HasSubstr(GetParam().missing));
    const std::string remedy = withIds(GetParam().remedy);
    EXPECT_THAT(text.out, HasSubstr(remedy + "\n"));

    const Outcome json = cli.json({"explain", "lun", lun, "--initiator", iqn});
    EXPECT_EQ(json.exitCode, 1);
    EXPECT_FALSE(json.json()["visible"].asBool());
    const Json::Value remedies = json.json()["remedies"];
    ASSERT_GT(remedies.size(), 0U);
    EXPECT_EQ(remedies[0]["command"].asString(), remedy);
}

TEST_P(MissingLink, IsMadeByTheCommandThatExplainProposes)
{
    bindAll();
    GetParam().cut(*this, {lun, host, lunGroup, hostGroup, view, iqn}, cli);
    Words words;
    std::istringstream remedy(withIds(GetParam().remedy));
    for (std::string word; remedy >> word;) {
        words.push_back(word == "HOST" ? host : word);
    }
    words.erase(words.begin());
    expect(0, words);
    expect(0, {"explain", "lun", lun, "--initiator", iqn});
}

INSTANTIATE_TEST_SUITE_P(Explain, MissingLink, ::testing::ValuesIn(GAPS),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(MappingTest, ExplainWalksTheWholeWayOfAVisibleLun)
{
    bindAll();
    const Outcome text = expect(0, {"explain", "lun", lun, "--initiator", iqn});
    EXPECT_THAT(text.out, HasSubstr("is visible to"));
    EXPECT_THAT(text.out, Not(HasSubstr("MISSING")));
    const Json::Value json = cli.json({"explain", "lun", lun, "--host", host}).json();
    EXPECT_TRUE(json["visible"].asBool());
    EXPECT_EQ(json["links"].size(), 4U);
    EXPECT_EQ(json["remedies"].size(), 0U);
}

TEST_F(MappingTest, ExplainProposesTheViewThatExistsWhereOnlyAGroupIsMissing)
{
    expect(0, {"hostgroup", "add", hostGroup, "--host", host});
    expect(0, {"view", "add", view, "--hostgroup", hostGroup});
    EXPECT_THAT(expect(1, {"explain", "lun", lun, "--initiator", iqn}).out,
                HasSubstr("tesselctl view add " + view + " --lungroup LUNGROUP"));
    expect(0, {"view", "remove", view, "--hostgroup", hostGroup});
    expect(0, {"lungroup", "add", lunGroup, "--lun", lun});
    EXPECT_THAT(expect(1, {"explain", "lun", lun, "--initiator", iqn}).out,
                HasSubstr("tesselctl view add VIEW --hostgroup " + hostGroup));
    expect(0, {"hostgroup", "remove", hostGroup, "--host", host});
    expect(0, {"view", "add", view, "--lungroup", lunGroup});
    EXPECT_THAT(expect(1, {"explain", "lun", lun, "--initiator", iqn}).out,
                HasSubstr("tesselctl view add " + view + " --hostgroup HOSTGROUP"));
}

TEST_F(MappingTest, ExplainTellsTheObjectsOfTheHostsOwn)
{
    bindAll();
    EXPECT_THAT(expect(0, {"explain", "lun", lun, "--initiator", iqn}).out, Not(HasSubstr("The host's own")));
    const std::string other = array.createLun("db02");
    expect(0, {"attach", "lun", other, "--initiator", iqn});
    const std::string own = "tessel_host_" + host;
    const Json::Value json = cli.json({"explain", "lun", other, "--host", host}).json()["own"];
    EXPECT_EQ(array.record("hostgroup", json["hostGroup"].asString())["NAME"], own);
    EXPECT_EQ(array.record("mappingview", json["view"].asString())["NAME"], own);
    EXPECT_EQ(array.record("lungroup", json["lunGroup"].asString())["NAME"], own);
    const std::string whole = "\nThe host's own, by which attaches show it disks:\n  ok       host group " +
                              json["hostGroup"].asString() + " (" + own + ")\n  ok       view " +
                              json["view"].asString() + " (" + own + ")\n  ok       LUN group " +
                              json["lunGroup"].asString() + " (" + own + ")\n";
    EXPECT_THAT(expect(0, {"explain", "lun", other, "--initiator", iqn}).out, ::testing::EndsWith(whole));
    EXPECT_THAT(expect(0, {"explain", "lun", lun, "--initiator", iqn}).out, ::testing::EndsWith(whole));
}

TEST_F(MappingTest, ExplainTellsWhatACrashHasLeftUnmade)
{
    const std::string own = "tessel_host_" + host;
    const std::string hosts = make({"hostgroup", "create", "--name", own});
    expect(0, {"hostgroup", "add", hosts, "--host", host});
    const auto end = [&](const std::string& links) {
        return ::testing::EndsWith("  ok       host group " + hosts + " (" + own + ")\n" + links +
                                   "  MISSING  LUN group\n"
                                   "An attach was not finished: the next one makes what is missing.\n");
    };
    EXPECT_THAT(expect(1, {"explain", "lun", lun, "--initiator", iqn}).out, end("  MISSING  view\n"));
    const std::string binding = make({"view", "create", "--name", own});
    expect(0, {"view", "add", binding, "--hostgroup", hosts});
    EXPECT_THAT(expect(1, {"explain", "lun", lun, "--initiator", iqn}).out,
                end("  ok       view " + binding + " (" + own + ")\n"));
    expect(0, {"attach", "lun", lun, "--initiator", iqn});
    const Json::Value finished = cli.json({"explain", "lun", lun, "--initiator", iqn}).json()["own"];
    EXPECT_EQ(finished["hostGroup"], hosts);
    EXPECT_EQ(finished["view"], binding);
    EXPECT_FALSE(finished["lunGroup"].isNull());
}

TEST_F(MappingTest, ExplainWorksForSnapshotsAndFCInitiators)
{
    const std::string snapshot = array.createSnapshot(lun, "snap");
    bindAll();
    expect(0, {"initiator", "fc", "create", "2100001405a0ffff", "--host", host});
    const Outcome not_yet = expect(1, {"explain", "snapshot", snapshot, "--initiator", "2100001405a0ffff"});
    EXPECT_THAT(not_yet.out, HasSubstr("tesselctl lungroup add " + lunGroup + " --snapshot " + snapshot));
    EXPECT_THAT(not_yet.out, Not(HasSubstr("tesselctl attach"))) << "attach is for iSCSI alone";
    expect(0, {"lungroup", "add", lunGroup, "--snapshot", snapshot});
    expect(0, {"explain", "snapshot", snapshot, "--initiator", "2100001405a0ffff"});
}

TEST_F(MappingTest, ExplainOfWhatTheArrayDoesNotKnowEndsWithCode4)
{
    expect(4, {"explain", "lun", "99", "--initiator", iqn});
    EXPECT_THAT(expect(4, {"explain", "lun", lun, "--initiator", "iqn.new"}).err,
                HasSubstr("tesselctl initiator iscsi create iqn.new"));
}

TEST_F(MappingTest, TopologyIsDrawnAsATree)
{
    bindAll();
    const std::string forward = "initiator " + iqn + "\n└─host " + host + " (web1)\n  └─host group " +
                                hostGroup + " (hosts)\n    └─view " + view + " (view)\n      └─LUN group " +
                                lunGroup + " (luns)\n        └─LUN " + lun + " (db01)\n";
    EXPECT_EQ(expect(0, {"topology", "--initiator", iqn}).out, forward);
    const std::string back = "LUN " + lun + " (db01)\n`-LUN group " + lunGroup + " (luns)\n  `-view " + view +
                             " (view)\n    `-host group " + hostGroup + " (hosts)\n";
    EXPECT_EQ(expect(0, {"topology", "--lun", lun, "--ascii"}).out, back);
    expect(4, {"topology", "--host", "99"});
}

TEST_F(MappingTest, TopologyHasEveryObjectOnceInJsonDotAndSvg)
{
    bindAll();
    const std::string other = make({"lungroup", "create", "--name", "q\"<&>\\"});
    const std::string secondView = make({"view", "create", "--name", "second"});
    expect(0, {"lungroup", "add", other, "--lun", lun});
    expect(0, {"view", "add", secondView, "--lungroup", other});
    const std::string secondGroup = make({"hostgroup", "create", "--name", "more"});
    expect(0, {"view", "add", secondView, "--hostgroup", secondGroup});
    expect(0, {"hostgroup", "add", secondGroup, "--host", host});

    const Json::Value json = cli.json({"topology", "--host", host}).json();
    EXPECT_EQ(json["nodes"].size(), 8U) << "the LUN stands in two groups and is one node";
    EXPECT_EQ(json["edges"].size(), 8U);
    const std::string dot = expect(0, {"topology", "--host", host, "--format", "dot"}).out;
    EXPECT_THAT(dot, HasSubstr("digraph"));
    EXPECT_THAT(dot, HasSubstr("q\\\"<&>\\\\"));
    const std::string svg = expect(0, {"topology", "--host", host, "--format", "svg"}).out;
    EXPECT_THAT(svg, HasSubstr("q&quot;&lt;&amp;&gt;"));
    EXPECT_THAT(svg, HasSubstr("</svg>"));
    size_t boxes = 0;
    for (size_t at = svg.find("<g><title>"); at != std::string::npos; at = svg.find("<g><title>", at + 1)) {
        ++boxes;
    }
    EXPECT_EQ(boxes, 8U);
}

} // namespace

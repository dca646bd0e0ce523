// Attach and detach converge: whatever showed the LUN before, whoever meets them, nothing is left behind.

#include "Cli.h"

#include <thread>

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr unsigned MANY = 20;

class AttachAndDetach : public MappingTest
{
protected:
    /** What an attach of the old kind has made. @return ID of the LUN group. */
    std::string showTheOldWay(const std::string& number = "1700000000")
    {
        const std::string luns = make({"lungroup", "create", "--name", "lungroup_" + number});
        const std::string hosts = make({"hostgroup", "create", "--name", "hostgroup_" + number});
        const std::string binding = make({"view", "create", "--name", "mappingview_" + number});
        expect(0, {"lungroup", "add", luns, "--lun", lun});
        expect(0, {"hostgroup", "add", hosts, "--host", host});
        expect(0, {"view", "add", binding, "--lungroup", luns});
        expect(0, {"view", "add", binding, "--hostgroup", hosts});
        return luns;
    }

    /** Shows a LUN group to another host of the administrator's. @return ID of the host group. */
    std::string showToOthers(const std::string& luns)
    {
        const std::string others = make({"hostgroup", "create", "--name", "others"});
        const std::string second = make({"view", "create", "--name", "second"});
        expect(0, {"view", "add", second, "--lungroup", luns});
        expect(0, {"view", "add", second, "--hostgroup", others});
        return others;
    }

    std::string anotherHost(const std::string& name)
    {
        const std::string id = make({"host", "create", "--name", name, "--os", "0"});
        make({"initiator", "iscsi", "create", iqnOf(name), "--host", id});
        return id;
    }

    static std::string iqnOf(const std::string& name) { return "iqn.2024-05.org.example:" + name; }

    std::string ownGroup() const
    {
        const Json::Value groups =
            cli.json({"lungroup", "list", "--lun", lun, "--name", "tessel_host_" + host}).json();
        return groups.empty() ? "" : groups[0]["ID"].asString();
    }

    size_t seen(const std::string& by) const { return cli.json({"lun", "list", "--host", by}).json().size(); }
    size_t all(const std::string& resource) const
    {
        return array.control("GET", "/objects/" + resource)["data"].size();
    }
    Words detach(const Words& more = {}) const
    {
        Words words = {"detach", "lun", lun, "--initiator", iqn};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    Words attach() const { return {"attach", "lun", lun, "--initiator", iqn}; }
};

TEST_F(AttachAndDetach, LeaveTheThreeObjectsOfTheHostAndNoMore)
{
    const size_t groups = all("lungroup");
    for (int cycle = 0; cycle < 5; ++cycle) {
        expect(0, attach());
        EXPECT_EQ(seen(host), 1U);
        const std::string own = ownGroup();
        array.clearJournal();
        EXPECT_THAT(expect(0, detach()).out,
                    AllOf(HasSubstr("LUN " + lun + " is no longer visible to host " + host + "\n"),
                          HasSubstr("taken out of LUN group " + own + " (tessel_host_" + host + ")\n")));
        EXPECT_LE(array.journal().size(), 25U);
        EXPECT_EQ(seen(host), 0U);
    }
    EXPECT_EQ(all("lungroup"), groups + 1);
    EXPECT_EQ(all("hostgroup"), 2U);
    EXPECT_EQ(all("mappingview"), 2U);
}

TEST_F(AttachAndDetach, TakeAsManyRequestsWhateverIsLeftOfAttachesOfTheOldKind)
{
    expect(0, attach());
    for (int number = 0; number < 10; ++number) {
        expect(0, {"lungroup", "remove", showTheOldWay("170000000" + std::to_string(number)), "--lun", lun});
    }
    array.clearJournal();
    expect(0, detach());
    EXPECT_LE(array.journal().size(), 25U);
    array.clearJournal();
    expect(0, attach());
    EXPECT_LE(array.journal().size(), 25U);
}

TEST_F(AttachAndDetach, WhatAnAttachOfTheOldKindShowsIsDetachedUnasked)
{
    const std::string luns = showTheOldWay();
    EXPECT_THAT(expect(0, attach()).out, HasSubstr("already"));
    const Json::Value done = cli.json(detach()).json();
    EXPECT_TRUE(done["wasVisible"].asBool()) << done;
    EXPECT_EQ(done["lunGroups"][0]["id"], luns);
    EXPECT_EQ(done["lunGroups"][0]["name"], "lungroup_1700000000");
    EXPECT_EQ(done["otherHostGroups"].size(), 0U);
    EXPECT_EQ(seen(host), 0U);
    expect(0, {"lungroup", "show", luns});
}

TEST_F(AttachAndDetach, WhatBothKindsShowIsTakenOutOfBoth)
{
    expect(0, attach());
    showTheOldWay();
    EXPECT_EQ(cli.json(detach()).json()["lunGroups"].size(), 2U);
    EXPECT_EQ(seen(host), 0U);
}

TEST_F(AttachAndDetach, WhatAnAttachOfTheOldKindShowsAndSomebodyShowsToOthersTooIsRefusedWithoutForce)
{
    const std::string luns = showTheOldWay();
    const std::string others = showToOthers(luns);
    EXPECT_THAT(expect(1, detach()).err,
                HasSubstr("other hosts may lose it: those of host group " + others + " (others)"));
    EXPECT_EQ(seen(host), 1U);
    const Json::Value done = cli.json(detach({"--force"})).json();
    EXPECT_THAT(done["otherHostGroups"].toStyledString(), HasSubstr("(others)"));
    EXPECT_EQ(seen(host), 0U);
}

TEST_F(AttachAndDetach, WhatTheHostSeesThroughAGroupOfSomebodyElseTooLeavesItsOwnAndIsTold)
{
    expect(0, attach());
    bindAll();
    const Outcome told = expect(1, detach());
    EXPECT_THAT(told.err,
                AllOf(HasSubstr("host " + host + " still sees LUN " + lun + ", though no longer through"),
                      HasSubstr("LUN group " + lunGroup + " (luns), which no attach has made"),
                      HasSubstr("host group " + hostGroup + " (hosts), whose hosts the array does not tell"),
                      HasSubstr("--force")));
    EXPECT_EQ(ownGroup(), "");
    EXPECT_EQ(seen(host), 1U);
    EXPECT_THAT(expect(0, detach({"--force"})).out, HasSubstr("gone too for host group " + hostGroup));
    EXPECT_EQ(seen(host), 0U);
    expect(0, {"lungroup", "show", lunGroup});
}

TEST_F(AttachAndDetach, AGroupThatShowsItOnTwoWaysIsNamedOnce)
{
    bindAll();
    const std::string hosts = showToOthers(lunGroup);
    expect(0, {"hostgroup", "add", hosts, "--host", host});
    const std::string told = expect(1, detach()).err;
    const std::string group = "LUN group " + lunGroup + " (luns), which no attach has made";
    EXPECT_THAT(told, HasSubstr(group));
    EXPECT_EQ(told.find(group), told.rfind(group)) << told;
}

TEST_F(AttachAndDetach, AnOwnGroupThatSomebodyShowsToOthersKeepsTheLunWithoutForce)
{
    expect(0, attach());
    const std::string own = ownGroup();
    const std::string others = showToOthers(own);
    EXPECT_THAT(expect(1, detach()).err,
                AllOf(HasSubstr("other hosts may lose it: those of host group " + others + " (others)"),
                      Not(HasSubstr("no attach has made"))));
    EXPECT_EQ(ownGroup(), own) << "it stays";
    EXPECT_THAT(expect(0, detach({"--force"})).out,
                HasSubstr("gone too for host group " + others + " (others)\n"));
    EXPECT_EQ(seen(host), 0U);
}

TEST_F(AttachAndDetach, OneHostsDetachLeavesAnotherHostsAccess)
{
    const std::string other = anotherHost("web2");
    expect(0, attach());
    expect(0, {"attach", "lun", lun, "--initiator", iqnOf("web2")});
    expect(0, detach());
    EXPECT_EQ(seen(host), 0U);
    EXPECT_EQ(seen(other), 1U);
}

TEST_F(AttachAndDetach, ADetachLooksNotIntoTheGroupsOfAttachesOfOtherHosts)
{
    std::vector<unsigned long> looks;
    for (const char* const more : {"web2", "web3", "web4"}) {
        anotherHost(more);
        expect(0, {"attach", "lun", lun, "--initiator", iqnOf(more)});
        expect(0, attach());
        const unsigned long before = array.requests("GET", "/mappingview/associate");
        expect(0, detach({"--remove-devices"}));
        looks.push_back(array.requests("GET", "/mappingview/associate") - before);
    }
    EXPECT_GT(looks.front(), 0U);
    EXPECT_THAT(looks, testing::Each(looks.front()));
}

TEST_F(AttachAndDetach, DetachOfAllHostsTakesItOutOfTheGroupsOfAttachesAndKeepsThem)
{
    const std::string other = anotherHost("web2");
    expect(0, attach());
    expect(0, {"attach", "lun", lun, "--initiator", iqnOf("web2")});
    showTheOldWay();
    const size_t groups = all("lungroup");
    const Outcome done = cli.json({"detach", "lun", lun, "--all-hosts"});
    ASSERT_EQ(done.exitCode, 0) << done;
    EXPECT_EQ(done.json()["lunGroups"].size(), 3U);
    EXPECT_EQ(seen(host) + seen(other), 0U);
    EXPECT_EQ(all("lungroup"), groups);
    EXPECT_FALSE(cli.json({"detach", "lun", lun, "--all-hosts"}).json()["wasVisible"].asBool());
}

TEST_F(AttachAndDetach, AnInitiatorWithoutAHostGetsOneAtItsAttachAndSeesNothingBefore)
{
    make({"initiator", "iscsi", "create", iqnOf("new")});
    EXPECT_THAT(expect(0, {"detach", "lun", lun, "--initiator", iqnOf("new")}).out,
                HasSubstr("was not visible to initiator " + iqnOf("new") + ", which has no host"));
    const std::string made =
        cli.json({"attach", "lun", lun, "--initiator", iqnOf("new"), "--host-ip", "192.0.2.7"})
            .json()["hostId"]
            .asString();
    EXPECT_EQ(array.record("host", made)["IP"], "192.0.2.7");
    EXPECT_EQ(seen(made), 1U);
    make({"initiator", "iscsi", "create", iqnOf("elsewhere")});
    const Json::Value other = cli.json({"attach", "lun", lun, "--initiator", iqnOf("elsewhere")}).json();
    EXPECT_EQ(array.record("host", other["hostId"].asString())["IP"], "") << "not that of this host";
}

TEST_F(AttachAndDetach, WorkOnWhileTheArrayIsBusy)
{
    for (const char* path : {"/lun*", "/hostgroup*", "/mappingview*", "/iscsi_initiator*", "/host/*"}) {
        Json::Value busy;
        busy["action"] = "error";
        busy["path"] = path;
        busy["code"] = 1077949006;
        busy["share"] = 20;
        busy["count"] = 0;
        array.addFault(busy);
    }
    for (int cycle = 0; cycle < 4; ++cycle) {
        expect(0, attach());
        expect(0, detach());
    }
    array.clearFaults();
    EXPECT_EQ(all("lungroup") + all("hostgroup") + all("mappingview"), 6U);
}

TEST_F(AttachAndDetach, WhatADetachReadsByItselfIsReadAgainWhileTheArrayIsBusy)
{
    expect(0, attach());
    for (const int code : {1077949006, 1077949001}) {
        array.addErrorFault("GET", "/lun/" + lun, code);
        array.addErrorFault("GET", "/iscsi_initiator/*", code);
        expect(0, detach());
        EXPECT_EQ(seen(host), 0U);
    }
}

/** Twenty at once, of one host or of many. */
class AtOnce : public AttachAndDetach, public ::testing::WithParamInterface<unsigned>
{
protected:
    void SetUp() override
    {
        for (unsigned i = 0; i < MANY; ++i) {
            luns.push_back(array.createLun("lun " + std::to_string(i)));
            if (i < GetParam()) {
                Json::Value initiator;
                initiator["ID"] = iqnOf(std::to_string(i));
                array.create("iscsi_initiator", initiator);
            }
        }
    }

    std::string initiator(unsigned i) const { return iqnOf(std::to_string(i % GetParam())); }

    void runAll(const char* command)
    {
        std::vector<Outcome> outcomes(MANY);
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < MANY; ++i) {
            threads.emplace_back([&, i] {
                outcomes[i] = cli.run({command, "lun", luns[i], "--initiator", initiator(i)});
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const Outcome& outcome : outcomes) {
            EXPECT_EQ(outcome.exitCode, 0) << outcome;
        }
    }

    std::vector<std::string> luns;
};

TEST_P(AtOnce, TwentyAttachesAndTwentyDetachesAllSucceedAndLeaveNothing)
{
    runAll("attach");
    const unsigned hosts = GetParam();
    for (const char* resource : {"lungroup", "hostgroup", "mappingview", "host"}) {
        EXPECT_EQ(all(resource), hosts + 1) << resource << ", one of them the fixture's";
    }
    size_t visible = 0;
    for (unsigned i = 0; i < hosts; ++i) {
        visible += seen(array.record("iscsi_initiator", initiator(i))["PARENTID"].asString());
    }
    EXPECT_EQ(visible, MANY);
    runAll("detach");
    for (unsigned i = 0; i < hosts; ++i) {
        EXPECT_EQ(seen(array.record("iscsi_initiator", initiator(i))["PARENTID"].asString()), 0U);
    }
    EXPECT_EQ(all("lungroup"), hosts + 1) << "they stay, for the next LUN";
}

INSTANTIATE_TEST_SUITE_P(Cli, AtOnce, ::testing::Values(1, MANY), [](const auto& one) {
    return one.param == 1 ? std::string("OfOneHost") : std::string("OfTwentyHosts");
});

} // namespace

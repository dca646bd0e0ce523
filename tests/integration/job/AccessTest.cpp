#include "JobTest.h"

#include <gmock/gmock.h>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Access : public JobTest
{
protected:
    void SetUp() override
    {
        JobTest::SetUp();
        newInitiator();
        lun = sim.createLun("lun");
    }

    /** Groups and a view of an administrator that show a LUN to the host. @return ID of the LUN group. */
    std::string showByHand(const std::string& object)
    {
        host = array.iscsiInitiators()->getIscsiInitiator(INITIATOR).PARENTID;
        if (host.empty()) {
            host = make("host", "by hand");
            array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
        }
        const std::string luns = make("lungroup", "luns by hand");
        const std::string hosts = make("hostgroup", "hosts by hand");
        const std::string view = make("mappingview", "view by hand");
        put("lungroup", luns, MO_LUN, object);
        put("hostgroup", hosts, MO_HOST, host);
        put("mappingview", view, MO_LUNGROUP, luns);
        put("mappingview", view, MO_HOSTGROUP, hosts);
        return luns;
    }

    std::string lun;
    std::string host;
};

const std::vector<std::string> WHOLE = {
    "host tessel_initiator [iqn.2026-01.example:job]", "hostgroup tessel_host [tessel_initiator]",
    "lungroup tessel_host [lun]", "view tessel_host [tessel_host] [tessel_host]"};
const std::vector<std::string> EMPTIED = {
    "host tessel_initiator [iqn.2026-01.example:job]", "hostgroup tessel_host [tessel_initiator]",
    "lungroup tessel_host []", "view tessel_host [tessel_host] [tessel_host]"};

TEST_F(Access, ShowsALunToAnInitiatorWithoutAHost)
{
    const AccessResult result = show(lun);
    EXPECT_TRUE(result.isVisible);
    EXPECT_FALSE(result.wasVisible);
    std::vector<MOType> types;
    for (const NamedObject& made : result.made) {
        types.push_back(made.type);
    }
    EXPECT_THAT(types, ElementsAre(MO_HOST, MO_HOSTGROUP, MO_MAPPINGVIEW, MO_LUNGROUP));
    EXPECT_EQ(result.own.lunGroup.NAME, "tessel_host_" + result.hostID);
    EXPECT_TRUE(sees(lun));
    EXPECT_THAT(graph().bound, WHOLE);
    EXPECT_EQ(graph().leftovers, 0u);
}

TEST_F(Access, MakesNothingForTheNextLunAndNothingTwice)
{
    show(lun);
    const std::string other = sim.createLun("other");
    const AccessResult second = show(other);
    EXPECT_THAT(second.made, IsEmpty());
    EXPECT_TRUE(sees(other));
    const AccessResult again = show(other);
    EXPECT_TRUE(again.wasVisible);
    EXPECT_EQ(again.own.lunGroup.ID, second.own.lunGroup.ID);
    EXPECT_EQ(graph().bound.size(), WHOLE.size());
}

TEST_F(Access, HidesOneLunAndKeepsTheThreeObjects)
{
    show(lun);
    const AccessResult result = hide(lun);
    EXPECT_FALSE(result.isVisible);
    ASSERT_EQ(result.leftFrom.size(), 1u);
    EXPECT_EQ(result.leftFrom[0].NAME, "tessel_host_" + result.hostID);
    EXPECT_FALSE(sees(lun));
    EXPECT_THAT(graph().bound, EMPTIED);
    EXPECT_THAT(hide(lun).leftFrom, IsEmpty()) << "it is hidden";
}

TEST_F(Access, ShowsAndHidesASnapshot)
{
    const StorageObject snapshot = StorageObject::snapshot(sim.createSnapshot(lun, "copy"));
    const HostInitiator initiator = HostInitiator::iscsi(INITIATOR);
    EXPECT_TRUE(ensureVisible(array.manager(), snapshot, initiator, options).isVisible);
    EXPECT_EQ(
        array.snapshots().ofHost(array.iscsiInitiators()->getIscsiInitiator(INITIATOR).PARENTID).all().size(),
        1u);
    EXPECT_TRUE(ensureVisible(array.manager(), snapshot, initiator, options).wasVisible);
    EXPECT_EQ(ensureHidden(array.manager(), snapshot, initiator, options).leftFrom.size(), 1u);
    EXPECT_TRUE(array.snapshots()
                    .ofHost(array.iscsiInitiators()->getIscsiInitiator(INITIATOR).PARENTID)
                    .all()
                    .empty());
}

TEST_F(Access, TakesAHostByItsFcInitiator)
{
    Json::Value initiator;
    initiator["ID"] = "2100001122334455";
    sim.create("fc_initiator", initiator);
    const HostInitiator fc = HostInitiator::fc("2100001122334455");
    EXPECT_TRUE(ensureVisible(array.manager(), StorageObject::lun(lun), fc, options).isVisible);
    EXPECT_FALSE(ensureHidden(array.manager(), StorageObject::lun(lun), fc, options).isVisible);
}

TEST_F(Access, UsesWhatShowsTheLunAlreadyAndTellsIt)
{
    const std::string luns = showByHand(lun);
    const Graph before = graph();
    const AccessResult result = show(lun);
    EXPECT_TRUE(result.wasVisible);
    EXPECT_THAT(result.made, IsEmpty());
    ASSERT_EQ(result.others.size(), 1u);
    EXPECT_EQ(result.others[0].lunGroup.ID, luns);
    EXPECT_EQ(result.others[0].mappingView.NAME, "view by hand");
    EXPECT_EQ(result.others[0].hostGroup.NAME, "hosts by hand");
    EXPECT_EQ(graph().bound, before.bound);
}

TEST_F(Access, LeavesGroupsOfOthersAndTellsThatTheyShowTheLunStill)
{
    show(lun);
    showByHand(lun);
    const AccessResult result = hide(lun);
    EXPECT_TRUE(result.isVisible);
    EXPECT_EQ(result.leftFrom.size(), 1u) << "its own";
    ASSERT_EQ(result.others.size(), 1u);
    EXPECT_EQ(result.others[0].lunGroup.NAME, "luns by hand");
    EXPECT_TRUE(sees(lun));

    options.evenThroughOthers = true;
    const AccessResult asked = hide(lun);
    EXPECT_FALSE(asked.isVisible);
    ASSERT_EQ(asked.leftFrom.size(), 1u);
    EXPECT_EQ(asked.leftFrom[0].NAME, "luns by hand");
    EXPECT_FALSE(sees(lun));
}

TEST_F(Access, LeavesTheLunInItsOwnGroupWhereSomebodyShowsThatToOthers)
{
    const std::string own = show(lun).own.lunGroup.ID;
    const std::string hosts = make("hostgroup", "hosts of others");
    const std::string view = make("mappingview", "view of others");
    put("mappingview", view, MO_LUNGROUP, own);
    put("mappingview", view, MO_HOSTGROUP, hosts);
    const AccessResult result = hide(lun);
    EXPECT_TRUE(result.isVisible);
    EXPECT_THAT(result.leftFrom, IsEmpty());
    ASSERT_EQ(result.others.size(), 1u);
    EXPECT_EQ(result.others[0].hostGroup.ID, hosts);
    EXPECT_TRUE(sees(lun));

    options.evenThroughOthers = true;
    EXPECT_EQ(hide(lun).leftFrom.size(), 1u);
    EXPECT_FALSE(sees(lun));
}

TEST_F(Access, LeavesTheLunInGroupsOfOtherHosts)
{
    newInitiator("iqn.2026-01.example:other");
    show(lun);
    show(lun, "iqn.2026-01.example:other");
    const AccessResult result = hide(lun);
    EXPECT_FALSE(result.isVisible);
    EXPECT_FALSE(sees(lun));
    EXPECT_TRUE(sees(lun, "iqn.2026-01.example:other"));
}

TEST_F(Access, HidesFromAnInitiatorWithoutAHostByDoingNothing)
{
    const unsigned long requests = requestsOf([&] { EXPECT_TRUE(hide(lun).hostID.empty()); });
    EXPECT_EQ(requests, 1u);
}

TEST_F(Access, GivesASuffixWhereTheNameIsTakenByWhatCannotBeFound)
{
    options.tries = 2;
    host = make("host", "a host");
    array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
    const std::string name = "tessel_host_" + host;
    for (const char* resource : {"lungroup", "hostgroup", "mappingview"}) {
        make(resource, name);
    }
    const AccessResult result = show(lun);
    EXPECT_EQ(result.own.lunGroup.NAME, name + "_2");
    EXPECT_EQ(result.own.mappingView.NAME, name + "_2");
    EXPECT_EQ(result.own.hostGroup.NAME, name + "_2");
    EXPECT_TRUE(sees(lun));
    EXPECT_EQ(show(lun).own.mappingView.NAME, name + "_2") << "by which it is visible already";

    // They are found again, and it can be hidden.
    const std::string other = sim.createLun("other");
    EXPECT_LE(requestsOf([&] { EXPECT_THAT(show(other).made, IsEmpty()); }), 20u)
        << "nor is one tried to make";
    EXPECT_EQ(hide(lun).leftFrom.size(), 1u);
    EXPECT_FALSE(sees(lun));
}

TEST_F(Access, FinishesWhatWasBegun)
{
    host = make("host", "a host");
    array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
    const std::string hosts = make("hostgroup", "tessel_host_" + host);
    put("hostgroup", hosts, MO_HOST, host);
    const std::string view = make("mappingview", "tessel_host_" + host);
    put("mappingview", view, MO_HOSTGROUP, hosts);
    const AccessResult result = show(lun);
    ASSERT_EQ(result.made.size(), 1u);
    EXPECT_EQ(result.made[0].type, MO_LUNGROUP);
    EXPECT_EQ(result.own.mappingView.ID, view);
}

TEST_F(Access, TakesAwayAgainWhatTheArrayDoesNotBind)
{
    options.tries = 2;
    const char* const refused[] = {
        R"({"method":"POST","path":"/hostgroup/associate","action":"error","code":50331651,"count":0})",
        R"({"method":"PUT","path":"/mappingview/create_associate","action":"error","code":50331651,"count":0})",
        R"({"method":"PUT","path":"/mappingview/create_associate","action":"error","code":50331651,"count":0,"skip":1})"};
    for (const char* fault : refused) {
        SCOPED_TRACE(fault);
        sim.addFault(fault);
        EXPECT_THROW(show(lun), OvraAPIException);
        sim.clearFaults();
        EXPECT_EQ(graph().leftovers, 0u);
        EXPECT_FALSE(sees(lun));
    }
    EXPECT_TRUE(show(lun).isVisible);
    EXPECT_EQ(graph().bound, WHOLE);
}

TEST_F(Access, LeavesAViewOfItsNameThatBindsALunGroupOfOthers)
{
    options.tries = 2;
    host = make("host", "a host");
    array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
    const std::string hosts = make("hostgroup", "tessel_host_" + host);
    put("hostgroup", hosts, MO_HOST, host);
    const std::string view = make("mappingview", "tessel_host_" + host);
    put("mappingview", view, MO_HOSTGROUP, hosts);
    const std::string foreign = make("lungroup", "of an administrator");
    put("mappingview", view, MO_LUNGROUP, foreign);
    const AccessResult result = show(lun);
    EXPECT_EQ(result.own.mappingView.NAME, "tessel_host_" + host + "_2");
    EXPECT_TRUE(array.luns().ofLunGroup(foreign).all().empty());
    EXPECT_TRUE(sees(lun));
}

TEST_F(Access, TellsWhatTheArrayDoesNotKnow)
{
    EXPECT_THROW(show("77"), OvraAPIException);
    EXPECT_THROW(show(lun, "iqn.2026-01.example:unknown"), OvraAPIException);
    EXPECT_THROW(show(""), OvraAPIException);
    EXPECT_THROW(show(lun, ""), OvraAPIException);
    EXPECT_THAT(graph().bound, ElementsAre());
    EXPECT_EQ(graph().leftovers, 0u);
}

TEST_F(Access, TakesFewRequestsWhateverTheHistory)
{
    show(lun);
    for (int cycle = 0; cycle < 20; ++cycle) { // leftovers of the attach that makes names of the time
        const std::string name = std::to_string(1700000000 + cycle);
        const std::string hosts = make("hostgroup", "hostgroup_" + name);
        put("hostgroup", hosts, MO_HOST, array.iscsiInitiators()->getIscsiInitiator(INITIATOR).PARENTID);
        put("mappingview", make("mappingview", "mappingview_" + name), MO_HOSTGROUP, hosts);
    }
    const std::string other = sim.createLun("other");
    EXPECT_LE(requestsOf([&] { show(other); }), 14u);
    EXPECT_LE(requestsOf([&] { hide(other); }), 8u);
}

TEST_F(Access, WorksOnWhileTheArrayIsBusy)
{
    for (const int code : {1077949006, 1077949001}) {
        // Every third request, of any kind, is put off; a mock of this would not show the reads of the
        // creates.
        Json::Value fault;
        fault["action"] = "error";
        fault["code"] = code;
        fault["count"] = 1;
        for (unsigned skip = 0; skip < 30; skip += 3) {
            fault["skip"] = skip;
            sim.addFault(fault);
        }
        const AccessResult result = show(lun);
        EXPECT_TRUE(result.isVisible);
        EXPECT_FALSE(hide(lun).isVisible);
        sim.clearFaults();
        EXPECT_EQ(graph().leftovers, 0u);
        EXPECT_EQ(graph().bound, EMPTIED);
    }
}

TEST_F(Access, ReadsBackWhatMayHaveBeenCarriedOut)
{
    // Every request that changes something is cut off once: half of them carried out, half not.
    for (const bool performed : {false, true}) {
        sim.reset();
        login(array);
        newInitiator();
        lun = sim.createLun("lun");
        for (const char* method : {"POST", "PUT"}) {
            for (const char* path :
                 {"/host", "/hostgroup*", "/mappingview*", "/lungroup*", "/iscsi_initiator/*"}) {
                Json::Value fault;
                fault["method"] = method;
                fault["path"] = path;
                fault["action"] = "close";
                fault["performed"] = performed;
                sim.addFault(fault);
            }
        }
        EXPECT_TRUE(show(lun).isVisible);
        EXPECT_EQ(graph().bound, WHOLE);
        EXPECT_LE(graph().leftovers, performed ? 4u : 0u) << "one for each create that was cut off";
    }
}

} // namespace

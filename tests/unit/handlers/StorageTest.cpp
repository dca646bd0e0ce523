// The particular rules of LUNs, LUN groups and snapshots.

#include "unit/handlers/HandlerTest.h"

namespace {

using namespace handlers;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Luns : public HandlerTest
{
protected:
    Luns()
    {
        mo.NAME = "a";
        mo.PARENTID = "0";
        mo.CAPACITY = 1000;
    }

    std::string created()
    {
        platform.reset();
        platform.reply(Reply::object(R"({"ID":"9"})"));
        lun(manager).createLun(mo);
        return platform.requests().front().text();
    }

    LunMO mo;
};

TEST_F(Luns, AreThickUnlessTheAllocationTypeIs1)
{
    for (const uint32_t type : {100u, 0u, 2u}) {
        mo.ALLOCTYPE = type;
        mo.ALLOCCAPACITY = 5120;
        mo.THINCAPACITYUSAGE = 50;
        EXPECT_THAT(created(), HasSubstr(" ALLOCTYPE=int:0 MIRRORPOLICY")) << type;
    }
}

TEST_F(Luns, SendTheirUsageUpTo100Percent)
{
    mo.ALLOCTYPE = 1;
    mo.ALLOCCAPACITY = 0;
    mo.THINCAPACITYUSAGE = 100;
    EXPECT_THAT(created(), HasSubstr(" INITIALALLOCCAPACITY=ull:0 THINCAPACITYUSAGE=ull:100 MIRROR"));
    mo.THINCAPACITYUSAGE = 101;
    EXPECT_THAT(created(), HasSubstr(" INITIALALLOCCAPACITY=ull:0 MIRROR"));
    mo.THINCAPACITYUSAGE = 0;
    EXPECT_THAT(created(), HasSubstr(" THINCAPACITYUSAGE=ull:0 MIRROR"));
}

TEST_F(Luns, AskForWholeSectorsOf512Bytes)
{
    EXPECT_THAT(created(), HasSubstr(" CAPACITY=ull:1 "));
    mo.CAPACITY = 511;
    EXPECT_THAT(created(), HasSubstr(" CAPACITY=ull:0 "));
    mo.CAPACITY = UINT64_MAX - 1;
    EXPECT_THAT(created(), HasSubstr(" CAPACITY=ull:36028797018963967 "));
}

TEST_F(Luns, PauseAFifthOfASecondBeforeTheirFirstReadAndNoOtherCreateDoes)
{
    created();
    EXPECT_THAT(platform.lines("usleep"), ElementsAre("usleep 200000"));
    platform.reset();
    platform.replyWith([](const SentRequest&) { return Reply::object(R"({"ID":"9"})"); });
    LunGroupMO group;
    HostMO aHost;
    HostGroupMO hosts;
    MappingViewMO view;
    IscsiInitiatorMO iscsiInitiator;
    FCInitiatorMO fcInitiator;
    group.NAME = aHost.NAME = hosts.NAME = view.NAME = iscsiInitiator.ID = fcInitiator.ID = "x";
    lunGroup(manager).createLunGroup(group);
    host(manager).createHost(aHost);
    hostGroup(manager).createHostGroup(hosts);
    mappingView(manager).createMappingView(view);
    iscsi(manager).createIscsiInitiator(iscsiInitiator);
    fc(manager).createFCInitiator(fcInitiator);
    EXPECT_THAT(platform.lines("usleep"), IsEmpty());
}

TEST_F(Luns, OfAGroupWithOneNameAreAskedForByOneCondition)
{
    LunMO filter;
    filter.NAME = "a";
    LunQuery query(filter, 0, 0);
    lun(manager).getLunByLunGroup("7", query);
    EXPECT_THAT(
        deeds(),
        ElementsAre("GET /lun/associate?filter=NAME:a&TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=7"));
}

TEST_F(Luns, WithoutAnIdInAnAnswerAreSkippedAndTheOrderIsTheArrays)
{
    platform.reply(Reply::list(R"([{"ID":"8"},{"NAME":"without"},{"ID":"3"}])"));
    platform.reply(Reply::object(R"({"ID":"8"})"));
    platform.reply(Reply::object(R"({"ID":"3"})"));
    LunQuery query;
    const std::vector<LunMO> found = lun(manager).getLunByHost("1", query);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].ID + found[1].ID, "83");
    EXPECT_THAT(deeds(), ElementsAre(HasSubstr("associate"), "GET /lun/8", "GET /lun/3"));
}

TEST_F(Luns, AFailureOfOneReadEndsTheWholeListWithItsCodeInEveryRecord)
{
    platform.reply(Reply::list(R"([{"ID":"1"},{"ID":"2"},{"ID":"3"}])"));
    platform.reply(Reply::object(R"({"ID":"1"})"));
    platform.reply(Reply::error(1077948993, "gone"));
    LunQuery query;
    EXPECT_EQ(outcomeOf([&] { lun(manager).getLunByHost("1", query); }),
              Outcome::errorAnswer(1077948993, journal::errorAnswer(1077948993, "gone", "getLun")));
    EXPECT_THAT(platform.lines("record! "),
                ElementsAre("record! getLun 1077948993", "record! getLunByCondition 1077948993",
                            "record! getLunByHost 1077948993"));
    EXPECT_EQ(platform.requests().size(), 3u);
}

class LunGroups : public HandlerTest
{
};

TEST_F(LunGroups, WithAnUnsetApplicationTypeSend0AndLeave0InTheCallersRecord)
{
    LunGroupMO mo;
    mo.NAME = "a";
    platform.reply(Reply::object(R"({"ID":"9"})"));
    lunGroup(manager).createLunGroup(mo);
    EXPECT_THAT(platform.requests().front().text(), HasSubstr(" APPTYPE=int:0 "));
    EXPECT_EQ(mo.APPTYPE, 0);
}

TEST_F(LunGroups, SendASetApplicationTypeAndAlwaysGroupType0)
{
    LunGroupMO mo;
    mo.NAME = "a";
    mo.APPTYPE = 3;
    mo.GROUPTYPE = 1;
    platform.reply(Reply::object(R"({"ID":"9"})"));
    lunGroup(manager).createLunGroup(mo);
    EXPECT_THAT(platform.requests().front().text(), HasSubstr(" APPTYPE=int:3 GROUPTYPE=ul:0"));
    EXPECT_EQ(mo.APPTYPE, 3);
    EXPECT_EQ(mo.GROUPTYPE, 1u);
}

TEST_F(LunGroups, WithoutDescriptionAndIdSendNoSuchKeys)
{
    LunGroupMO mo;
    mo.NAME = "a";
    platform.reply(Reply::object(R"({"ID":"9"})"));
    lunGroup(manager).createLunGroup(mo);
    EXPECT_THAT(platform.requests().front().body,
                Not(testing::Contains(testing::Key(testing::AnyOf("ID", "DESCRIPTION")))));
}

TEST_F(LunGroups, HoldTheSumOfTheirLunsAndSnapshots)
{
    platform.reply(Reply::object(R"({"COUNT":"3"})"));
    platform.reply(Reply::object(R"({"COUNT":4})"));
    EXPECT_EQ(lunGroup(manager).getObjNOFromLunGroup("5"), 7u);
}

TEST_F(LunGroups, ACountThatIsNoDecimalNumberIsAFailureAndNever0)
{
    for (const char* const count :
         {R"({"COUNT":""})", R"({"COUNT":"x"})", R"({"COUNT":"-1"})", R"({"COUNT":"1x"})",
          R"({"COUNT":" 0"})", R"({"COUNT":null})", R"({"ID":"1"})", R"({"COUNT":[0]})",
          R"({"COUNT":{"a":0}})", R"({"COUNT":0.5})", R"({"COUNT":false})", "null"}) {
        platform.reset();
        platform.reply(std::string(count) == "null" ? Reply::ok() : Reply::object(count));
        EXPECT_EQ(outcomeOf([&] { lunGroup(manager).getObjNOFromLunGroup("5"); }),
                  Outcome::failed(journal::noAnswer("getCountByAssociate")))
            << count;
        EXPECT_THAT(platform.lines("record"),
                    ElementsAre("record! getCountByAssociate 10003", "record! getObjNOFromLunGroup 10003"))
            << count;
    }
}

TEST_F(LunGroups, OfAViewWithoutOneAreAnEmptyRecordAndNoSecondRequest)
{
    for (const Reply& reply : {Reply::ok(), Reply::object(R"({"NAME":"without"})")}) {
        platform.reset();
        platform.reply(reply);
        EXPECT_EQ(lunGroup(manager).getLunGroupByMappingView("6").ID, "");
        EXPECT_EQ(platform.requests().size(), 1u);
    }
}

class Snapshots : public HandlerTest
{
};

TEST_F(Snapshots, OfAnEmptyAnswerAreAnEmptyListAndNoFurtherRequest)
{
    SnapshotQuery query;
    EXPECT_THAT(snapshot(manager).getSnapshotByHost("3", query), IsEmpty());
    EXPECT_THAT(deeds(), ElementsAre("GET /snapshot/associate?TYPE=27&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3"));
}

TEST_F(Snapshots, ReadWithoutAnAnswerHaveCapacitiesOfAllOnesAnd0IsARealOne)
{
    EXPECT_EQ(snapshot(manager).getSnapshot("7").USERCAPACITY, UINT64_MAX);
    EXPECT_EQ(snapshot(manager).getSnapshot("7").CONSUMEDCAPACITY, UINT64_MAX);
    platform.reply(Reply::object(R"({"ID":"7","USERCAPACITY":"0"})"));
    EXPECT_EQ(snapshot(manager).getSnapshot("7").USERCAPACITY, 0u);
}

TEST_F(Snapshots, AFailureOfOneReadEndsTheSearch)
{
    platform.reply(Reply::list(R"([{"ID":"1"},{"ID":"2"}])"));
    platform.reply(Reply::noAnswer(28));
    SnapshotQuery query;
    EXPECT_EQ(outcomeOf([&] { snapshot(manager).getSnapshotByLunGroup("5", query); }),
              Outcome::failed(journal::noAnswer("getSnapshot")));
    EXPECT_THAT(platform.lines("record! "),
                ElementsAre("record! getSnapshot 28", "record! getSnapshotByLunGroup 28",
                            "record! getSnapshotByLunGroup 28"));
}

TEST_F(HandlerTest, TwoCountsThatExceedAllNumbersAreNeverAnEmptyLunGroup)
{
    platform.reply(Reply::object(R"({"COUNT":"18446744073709551615"})"));
    platform.reply(Reply::object(R"({"COUNT":"1"})"));
    EXPECT_EQ(lunGroup(manager).getObjNOFromLunGroup("5"), UINT64_MAX);
}

} // namespace

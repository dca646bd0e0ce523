// The particular rules of hosts, host groups, initiators, mapping views and ports.

#include "unit/handlers/HandlerTest.h"

#include <map>

namespace {

using namespace handlers;
using journal::done;
using journal::join;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

class Hosts : public HandlerTest
{
protected:
    Hosts()
    {
        mo.NAME = "h";
        platform.reply(Reply::object(R"({"ID":"9"})"));
    }

    HostMO mo;
};

TEST_F(Hosts, WithAnUnsetOperatingSystemAreCreatedAllTheSameAfterAWarningRecord)
{
    platform.reply(Reply::object(R"({"ID":"9"})"));
    EXPECT_EQ(host(manager).createHost(mo).ID, "9");
    EXPECT_THAT(platform.journal(),
                ElementsAreArray(join(
                    journal::enter("createHost"), "error: OperationSystem value is initial value! createHost",
                    "record! createHost 1", "POST /host TYPE=int:21 NAME=string:h OPERATIONSYSTEM=int:100",
                    done("getHost", "GET /host/9"), "record createHost 0", journal::leave("createHost"))));
}

TEST_F(Hosts, WithAnUnsetOperatingSystemThatFailWriteTwoRecords)
{
    platform.reset();
    platform.reply(Reply::noAnswer(28));
    EXPECT_EQ(outcomeOf([&] { host(manager).createHost(mo); }).kind, Outcome::FAILED);
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! createHost 1", "record! createHost 28"));
}

TEST_F(Hosts, WithoutANameAreRefusedBeforeTheWarning)
{
    platform.reset();
    mo.NAME.clear();
    EXPECT_EQ(outcomeOf([&] { host(manager).createHost(mo); }).kind, Outcome::FAILED);
    EXPECT_THAT(platform.lines("error"), ElementsAre("error: Host name is empty! createHost"));
}

TEST_F(Hosts, SendAParentTypeOnlyWhenItIsNot0AndWithoutAParentIdAlone)
{
    mo.OPERATIONSYSTEM = 0;
    host(manager).createHost(mo);
    EXPECT_EQ(platform.requests()[0].text(), "POST /host TYPE=int:21 NAME=string:h OPERATIONSYSTEM=int:0");
    mo.PARENTTYPE = 14;
    platform.reply(Reply::object(R"({"ID":"9"})"));
    host(manager).createHost(mo);
    EXPECT_EQ(platform.requests()[2].text(),
              "POST /host TYPE=int:21 NAME=string:h OPERATIONSYSTEM=int:0 PARENTTYPE=int:14");
}

TEST_F(Hosts, WithAnIdSendItAheadOfTheirType)
{
    mo.ID = "4";
    host(manager).createHost(mo);
    EXPECT_EQ(platform.requests()[0].body[0].first + platform.requests()[0].body[1].first, "IDTYPE");
}

TEST_F(Hosts, WhoseOneReadBackFailsComeBackWithTheDefaults)
{
    mo.IP = "192.0.2.9";
    platform.reply(Reply::error(1077949006, "later"));
    const HostMO created = host(manager).createHost(mo);
    EXPECT_EQ(created.ID + created.NAME + created.IP, "");
    EXPECT_EQ(created.OPERATIONSYSTEM, 100u);
    EXPECT_EQ(created.ISADD2HOSTGROUP, -1);
    EXPECT_EQ(platform.requests().size(), 2u);
}

TEST_F(Hosts, CreatedWithoutAnIdInTheAnswerFailInTheReadBack)
{
    platform.reset();
    EXPECT_EQ(outcomeOf([&] { host(manager).createHost(mo); }), Outcome::failed("hostID is empty! getHost"));
    EXPECT_THAT(platform.lines("record! "),
                ElementsAre("record! createHost 1", "record! getHost 1", "record! createHost 1"));
}

class HostGroups : public HandlerTest
{
};

TEST_F(HostGroups, AreLeftThroughThePathOfHosts)
{
    hostGroup(manager).removeHostFromHostGroup("3", "5");
    EXPECT_THAT(deeds(), ElementsAre("DELETE /host/associate?ID=5&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3"));
}

TEST_F(HostGroups, OfAViewWithoutOneAreAnEmptyRecordAndNoSecondRequest)
{
    for (const Reply& reply : {Reply::ok(), Reply::object(R"({"NAME":"without"})")}) {
        platform.reset();
        platform.reply(reply);
        EXPECT_EQ(hostGroup(manager).getHostGroupByMappingView("6").ID, "");
        EXPECT_EQ(platform.requests().size(), 1u);
    }
}

TEST_F(HostGroups, OfAHostAreReadInTheArraysOrderWithoutThoseThatHaveNoId)
{
    platform.reply(Reply::list(R"([{"ID":"8"},{},{"ID":"3"}])"));
    platform.reply(Reply::object(R"({"ID":"8"})"));
    platform.reply(Reply::object(R"({"ID":"3"})"));
    HostGroupQuery query;
    const auto found = hostGroup(manager).getHostGroupByHost("1", query);
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].ID + found[1].ID, "83");
}

class Initiators : public HandlerTest
{
};

TEST_F(Initiators, BoundWithBothIdsEmptyReportTheInitiator)
{
    EXPECT_EQ(outcomeOf([&] { iscsi(manager).addIscsiInitiatorToHost("", ""); }),
              Outcome::failed("iscsiInitiatorID is empty! addIscsiInitiatorToHost"));
    EXPECT_EQ(outcomeOf([&] { fc(manager).addFCInitiatorToHost("", ""); }),
              Outcome::failed("fcInitiatorID is empty! addFCInitiatorToHost"));
}

TEST_F(Initiators, OfFCWithoutAParentSendNeitherParentKey)
{
    FCInitiatorMO mo;
    mo.ID = "w";
    mo.NAME = "n";
    platform.reply(Reply::object(R"({"ID":"w"})"));
    fc(manager).createFCInitiator(mo);
    EXPECT_EQ(platform.requests().front().text(), "POST /fc_initiator ID=string:w NAME=string:n");
}

TEST_F(Initiators, UnknownToTheArrayAreRecordsWithTheDefaults)
{
    EXPECT_FALSE(fc(manager).getFCInitiator("w").ISFREE);
    EXPECT_EQ(fc(manager).getFCInitiator("w").ID, "");
    EXPECT_EQ(iscsi(manager).getIscsiInitiator("iqn").NORMALVERMODE, "0");
}

class MappingViews : public HandlerTest
{
};

TEST_F(MappingViews, AllowInBandCommandsForAnyValueButZero)
{
    const std::map<int, std::string> values = {{0, "bool:false"}, {1, "bool:true"}, {-1, "bool:true"}};
    for (const auto& value : values) {
        platform.reset();
        platform.reply(Reply::object(R"({"ID":"9"})"));
        MappingViewMO mo;
        mo.NAME = "v";
        mo.ENABLEINBANDCOMMAND = value.first;
        mappingView(manager).createMappingView(mo);
        EXPECT_THAT(platform.requests().front().body,
                    testing::Contains(testing::Pair("ENABLEINBANDCOMMAND", value.second)));
    }
}

TEST_F(MappingViews, ThatAreBusyAsALunGroupAreNotReadAgainAndComeBackEmpty)
{
    gRetryTimes = 3;
    platform.reply(Reply::object(R"({"ID":"9"})"));
    platform.reply(Reply::error(1077949001, "busy"));
    MappingViewMO mo;
    mo.NAME = "v";
    EXPECT_EQ(mappingView(manager).createMappingView(mo).ID, "");
    EXPECT_EQ(platform.requests().size(), 2u);
}

TEST_F(MappingViews, SendTheirKeysInAnotherOrderWhenAddingThanWhenRemoving)
{
    mappingView(manager).addLunGroupToMappingView("5", "6");
    mappingView(manager).removeLunGroupFromMappingView("5", "6");
    const auto keys = [&](size_t index) {
        const SentRequest request = platform.requests()[index];
        std::string all;
        for (const auto& member : request.body) {
            all += member.first + " ";
        }
        return all;
    };
    EXPECT_EQ(keys(0), "TYPE ID ASSOCIATEOBJTYPE ASSOCIATEOBJID ");
    EXPECT_EQ(keys(1), "ID TYPE ASSOCIATEOBJTYPE ASSOCIATEOBJID ");
}

class Ports : public HandlerTest
{
};

TEST_F(Ports, AFailureOfOneReadEndsTheBatch)
{
    platform.reply(Reply::list(R"([{"ID":"1"},{"ID":"2"},{"ID":"3"}])"));
    platform.reply(Reply::object(R"({"ID":"1"})"));
    platform.reply(Reply::error(5, "gone"));
    FCPortQuery query;
    EXPECT_EQ(outcomeOf([&] { fcPort(manager).getFCPortBatch(query); }).code, 5);
    EXPECT_THAT(platform.lines("record! "), ElementsAre("record! getFCPort 5", "record! getFCPortBatch 5"));
    EXPECT_EQ(platform.requests().size(), 3u);
}

TEST_F(Ports, OfAnEmptyAnswerAreAnEmptyListAndNoFurtherRequest)
{
    ETHPortQuery query;
    EXPECT_THAT(ethPort(manager).getETHPortBatch(query), IsEmpty());
    EXPECT_EQ(platform.requests().size(), 1u);
}

} // namespace

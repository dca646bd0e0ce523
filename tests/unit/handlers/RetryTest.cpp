// Reading a new object back: which errors are tried again, how often, and how the loop ends.

#include "unit/handlers/HandlerTest.h"

namespace {

using namespace handlers;
using journal::broken;
using journal::done;
using journal::errorAnswer;
using journal::join;
using testing::ElementsAreArray;
using M = CDeviceManagerImpl&;

const int NOT_YET = 1077949006;
const int BUSY = 1077949001;
const int OTHER = 1077949002;

/** A create operation that reads its object back in a loop. */
struct Creation
{
    std::string operation;
    std::string post;
    std::string read; ///< the get operation
    std::string get;  ///< its request
    std::string retryLine;
    bool settles;                                           ///< pauses once before the first read
    bool retriesBusy;                                       ///< tries again on BUSY too
    std::function<std::string(CDeviceManagerImpl&)> create; ///< returns the ID of the result
};

void PrintTo(const Creation& creation, std::ostream* out)
{
    *out << creation.operation;
}

const Creation CREATIONS[] = {
    {"createLun",
     "POST /lun TYPE=int:11 NAME=string:x PARENTTYPE=int:216 PARENTID=string:0 CAPACITY=ull:1 ALLOCTYPE=int:0"
     " MIRRORPOLICY=ul:1 WRITEPOLICY=ul:1 PREFETCHPOLICY=ul:3 DATATRANSFERPOLICY=ul:0"
     " INITIALDISTRIBUTEPOLICY=ul:0",
     "getLun", "GET /lun/9", "retry get lun!", true, false,
     [](M m) {
         LunMO mo;
         mo.NAME = "x";
         mo.PARENTID = "0";
         mo.CAPACITY = 1000;
         return lun(m).createLun(mo).ID;
     }},
    {"createLunGroup", "POST /lungroup/ TYPE=int:256 NAME=string:x APPTYPE=int:0 GROUPTYPE=ul:0",
     "getLunGroup", "GET /lungroup/9", "retry get lun group!", false, true,
     [](M m) {
         LunGroupMO mo;
         mo.NAME = "x";
         return lunGroup(m).createLunGroup(mo).ID;
     }},
    {"createHost", "POST /host TYPE=int:21 NAME=string:x OPERATIONSYSTEM=int:0", "getHost", "GET /host/9",
     "retry get host!", false, false,
     [](M m) {
         HostMO mo;
         mo.NAME = "x";
         mo.OPERATIONSYSTEM = 0;
         return host(m).createHost(mo).ID;
     }},
    {"createHostGroup", "POST /hostgroup TYPE=int:14 NAME=string:x", "getHostGroup", "GET /hostgroup/9",
     "retry get host group!", false, false,
     [](M m) {
         HostGroupMO mo;
         mo.NAME = "x";
         return hostGroup(m).createHostGroup(mo).ID;
     }},
    {"createMappingView", "POST /mappingview TYPE=int:245 NAME=string:x ENABLEINBANDCOMMAND=bool:false",
     "getMappingView", "GET /mappingview/9", "retry get mapping view!", false, false,
     [](M m) {
         MappingViewMO mo;
         mo.NAME = "x";
         return mappingView(m).createMappingView(mo).ID;
     }},
};

class ReadBack : public HandlerTest, public testing::WithParamInterface<Creation>
{
protected:
    ReadBack()
    {
        gRetryTimes = 3;
        gRetrySleepTimeMicroSeconds = 1234;
        platform.reply(Reply::object(R"({"ID":"9"})"));
    }

    std::string create()
    {
        std::string id;
        EXPECT_EQ(outcomeOf([&] { id = GetParam().create(manager); }), Outcome::returned());
        return id;
    }

    Lines beforeReading() const
    {
        return join(GetParam().post, GetParam().settles ? Lines{"usleep 200000"} : Lines());
    }
    Lines readable() const { return done(GetParam().read, GetParam().get); }

    Lines failing(int code) const
    {
        return broken(GetParam().read, code, GetParam().get,
                      "error: " + errorAnswer(code, "later", GetParam().read));
    }

    Lines pause() const { return {"info: " + GetParam().retryLine, "usleep 1234"}; }

    template <class... Reads>
    void expectJournal(const Reads&... reads) const
    {
        EXPECT_THAT(platform.journal(),
                    ElementsAreArray(done(GetParam().operation, beforeReading(), reads...)));
    }
};

TEST_P(ReadBack, EndsWithTheFirstReadThatSucceeds)
{
    platform.reply(Reply::error(NOT_YET, "later"));
    platform.reply(Reply::error(NOT_YET, "later"));
    platform.reply(Reply::object(R"({"ID":"9"})"));
    EXPECT_EQ(create(), "9");
    expectJournal(failing(NOT_YET), pause(), failing(NOT_YET), pause(), readable());
}

TEST_P(ReadBack, IsTriedAgainAsOftenAsConfiguredAndThenEndsQuietlyWithAnEmptyRecord)
{
    platform.replyWith([](const SentRequest&) { return Reply::error(NOT_YET, "later"); });
    EXPECT_EQ(create(), "");
    expectJournal(failing(NOT_YET), pause(), failing(NOT_YET), pause(), failing(NOT_YET), pause(),
                  failing(NOT_YET));
}

TEST_P(ReadBack, SucceedsWithTheLastTry)
{
    for (int i = 0; i < 3; ++i) {
        platform.reply(Reply::error(NOT_YET, "later"));
    }
    platform.reply(Reply::object(R"({"ID":"9"})"));
    EXPECT_EQ(create(), "9");
    EXPECT_EQ(platform.lines("info: " + GetParam().retryLine).size(), 3u);
    EXPECT_EQ(platform.lines("usleep 1234").size(), 3u);
}

TEST_P(ReadBack, WithoutRetriesReadsOnceAndEndsQuietly)
{
    gRetryTimes = 0;
    platform.reply(Reply::error(NOT_YET, "later"));
    EXPECT_EQ(create(), "");
    expectJournal(failing(NOT_YET));
}

TEST_P(ReadBack, EndsQuietlyAtOnceOnAnyOtherErrorOfTheArray)
{
    platform.reply(Reply::error(OTHER, "later"));
    EXPECT_EQ(create(), "");
    expectJournal(failing(OTHER));
}

TEST_P(ReadBack, IsTriedAgainOnABusyLunGroupOnlyForLunGroups)
{
    platform.reply(Reply::error(BUSY, "later"));
    platform.reply(Reply::object(R"({"ID":"9"})"));
    const std::string id = create();
    if (GetParam().retriesBusy) {
        EXPECT_EQ(id, "9");
        expectJournal(failing(BUSY), pause(), readable());
    } else {
        EXPECT_EQ(id, "");
        expectJournal(failing(BUSY));
    }
}

TEST_P(ReadBack, LetsAnyOtherExceptionPassAndRecordsItsCode)
{
    platform.reply(Reply::error(NOT_YET, "later"));
    platform.reply(Reply::noAnswer(28));
    const std::string message = journal::noAnswer(GetParam().read);
    EXPECT_EQ(outcomeOf([&] { GetParam().create(manager); }), Outcome::failed(message));
    EXPECT_THAT(platform.journal(),
                ElementsAreArray(broken(GetParam().operation, 28, beforeReading(), failing(NOT_YET), pause(),
                                        broken(GetParam().read, 28, GetParam().get, "error: " + message))));
}

TEST_P(ReadBack, ThatFindsNoObjectSucceedsWithAnEmptyRecord)
{
    platform.reply(Reply::ok());
    EXPECT_EQ(create(), "");
    expectJournal(readable());
}

INSTANTIATE_TEST_SUITE_P(Of, ReadBack, testing::ValuesIn(CREATIONS),
                         [](const auto& tested) { return tested.param.operation; });

TEST_F(HandlerTest, AFailedCreateIsNotReadBack)
{
    gRetryTimes = 3;
    LunMO mo;
    mo.NAME = "x";
    mo.PARENTID = "0";
    mo.CAPACITY = 1000;
    platform.reply(Reply::error(NOT_YET, "later"));
    EXPECT_EQ(outcomeOf([&] { lun(manager).createLun(mo); }).code, NOT_YET);
    EXPECT_EQ(platform.requests().size(), 1u);
    EXPECT_TRUE(platform.lines("usleep").empty());
}

TEST_F(HandlerTest, InitiatorsAreReadBackOnceWithoutPauseOrRetryAndFailuresPass)
{
    gRetryTimes = 3;
    platform.reply(Reply::object(R"({"ID":"9"})"));
    platform.reply(Reply::error(NOT_YET, "later"));
    IscsiInitiatorMO iscsiMO;
    iscsiMO.ID = "iqn";
    EXPECT_EQ(outcomeOf([&] { iscsi(manager).createIscsiInitiator(iscsiMO); }),
              Outcome::errorAnswer(NOT_YET, errorAnswer(NOT_YET, "later", "getIscsiInitiator")));
    platform.reply(Reply::object(R"({"ID":"9"})"));
    platform.reply(Reply::error(NOT_YET, "later"));
    FCInitiatorMO fcMO;
    fcMO.ID = "w";
    EXPECT_EQ(outcomeOf([&] { fc(manager).createFCInitiator(fcMO); }),
              Outcome::errorAnswer(NOT_YET, errorAnswer(NOT_YET, "later", "getFCInitiator")));
    EXPECT_EQ(platform.requests().size(), 4u);
    EXPECT_TRUE(platform.lines("usleep").empty());
    EXPECT_THAT(platform.lines("record! create"),
                testing::ElementsAre("record! createIscsiInitiator 1077949006",
                                     "record! createFCInitiator 1077949006"));
}

} // namespace

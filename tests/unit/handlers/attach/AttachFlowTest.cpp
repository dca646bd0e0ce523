// Attaching: what is looked up, created and bound, in which order, and what a failure in the middle leaves.

#include "unit/handlers/attach/AttachTest.h"

#include <ctime>

namespace {

using journal::broken;
using journal::done;
using journal::join;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Attach : public AttachTest
{
protected:
    Attach() { describeGroups(); }

    void describeGroups()
    {
        onRequest("POST /lungroup/ ", object("lg1"));
        onRequest("GET /lungroup/lg1", object("lg1"));
        onRequest("POST /hostgroup ", object("hg1"));
        onRequest("GET /hostgroup/hg1", object("hg1"));
        onRequest("POST /mappingview ", object("v1"));
        onRequest("GET /mappingview/v1", object("v1"));
    }

    void restart()
    {
        describeArray();
        describeGroups();
    }

    Lines lookups() const { return {read(), "GET /iscsi_initiator/iqn"}; }

    Lines newGroups() const
    {
        return {"POST /lungroup/ TYPE=int:256 NAME=string:lungroup_SECONDS APPTYPE=int:0 GROUPTYPE=ul:0",
                "GET /lungroup/lg1",
                "POST /lungroup/associate ID=string:lg1 ASSOCIATEOBJTYPE=int:" + GetParam().type +
                    " ASSOCIATEOBJID=string:7",
                "POST /hostgroup TYPE=int:14 NAME=string:hostgroup_SECONDS",
                "GET /hostgroup/hg1",
                "POST /hostgroup/associate ID=string:hg1 ASSOCIATEOBJTYPE=int:21 ASSOCIATEOBJID=string:h1",
                "POST /mappingview TYPE=int:245 NAME=string:mappingview_SECONDS"
                " ENABLEINBANDCOMMAND=bool:false",
                "GET /mappingview/v1"};
    }

    const std::string bindHosts = "PUT /mappingview/create_associate TYPE=int:245 ID=string:v1"
                                  " ASSOCIATEOBJTYPE=ul:14 ASSOCIATEOBJID=string:hg1";
    const std::string bindLuns = "PUT /mappingview/create_associate TYPE=int:245 ID=string:v1"
                                 " ASSOCIATEOBJTYPE=ul:256 ASSOCIATEOBJID=string:lg1";
};

TEST_P(Attach, LooksUpCreatesAndBindsInThisOrder)
{
    EXPECT_EQ(attach(), 0);
    EXPECT_THAT(named(), ElementsAreArray(join(lookups(), "GET /host/h1", listOf("21", "h1"), newGroups(),
                                               bindHosts, bindLuns)));
    const Lines seen = platform.journal();
    EXPECT_EQ(seen.front(), journal::enter(GetParam().attach));
    EXPECT_EQ(seen[seen.size() - 2], "record " + GetParam().attach + " 0");
    EXPECT_EQ(seen.back(), journal::leave(GetParam().attach));
    EXPECT_THAT(platform.lines("record " + GetParam().attach),
                ElementsAre("record " + GetParam().attach + " 0"));
}

TEST_P(Attach, OfAnInitiatorWithoutAHostCreatesOneAndBindsTheInitiatorToIt)
{
    onRequest("GET /iscsi_initiator/iqn", object("iqn"));
    onRequest("POST /host ", object("h1"));
    EXPECT_EQ(attach(), 0);
    const Lines newHost = {"POST /host TYPE=int:21 NAME=string:host_SECONDS OPERATIONSYSTEM=int:100"
                           " IP=string:192.0.2.9",
                           "GET /host/h1", "PUT /iscsi_initiator/iqn PARENTTYPE=int:21 PARENTID=string:h1"};
    EXPECT_THAT(named(),
                ElementsAreArray(join(lookups(), "error: OperationSystem value is initial value! createHost",
                                      newHost, listOf("21", "h1"), newGroups(), bindHosts, bindLuns)));
}

TEST_P(Attach, OfAnObjectThatTheHostSeesReturns1AndCreatesNothing)
{
    onRequest(listOf("21", "h1"), Reply::list(R"([{"ID":"7"}])"));
    EXPECT_EQ(attach(), 1);
    const std::string message = "The MappingView was already existed! " + GetParam().attach;
    EXPECT_THAT(named(), ElementsAreArray(join(lookups(), "GET /host/h1", listOf("21", "h1"), read(),
                                               "error: " + message)));
    EXPECT_EQ(platform.journal().back(), "record! " + GetParam().attach + " 1");
    EXPECT_THAT(platform.lines(journal::leave(GetParam().attach)), IsEmpty());
    EXPECT_THAT(platform.lines("record! "), ElementsAre("record! " + GetParam().attach + " 1"));
}

TEST_P(Attach, DeletesTheNewViewWhenTheHostGroupCannotBeAddedAndStillReturns0)
{
    onRequest(bindHosts, Reply::error(1077951819, "no"));
    EXPECT_EQ(attach(), 0);
    const std::string failed =
        "error: " + journal::errorAnswer(1077951819, "no", "addHostGroupToMappingView");
    EXPECT_THAT(named(), ElementsAreArray(join(
                             lookups(), "GET /host/h1", listOf("21", "h1"), newGroups(), bindHosts, failed,
                             "error: MappingView add HostGroup or add LunGroup fail! " + GetParam().attach,
                             "DELETE /mappingview/v1")));
    EXPECT_THAT(platform.lines("record " + GetParam().attach),
                ElementsAre("record " + GetParam().attach + " 0"));
    EXPECT_EQ(platform.journal().back(), journal::leave(GetParam().attach));
}

TEST_P(Attach, DeletesTheNewViewWhenTheLunGroupCannotBeAdded)
{
    onRequest(bindLuns, Reply::noAnswer(28));
    EXPECT_EQ(attach(), 0);
    const Lines seen = named();
    EXPECT_THAT(Lines(seen.end() - 5, seen.end()),
                ElementsAre(bindHosts, bindLuns,
                            "error: url error or internet error addLunGroupToMappingView",
                            "error: MappingView add HostGroup or add LunGroup fail! " + GetParam().attach,
                            "DELETE /mappingview/v1"));
    EXPECT_THAT(seen, Not(Contains(HasSubstr("DELETE /lungroup"))));
    EXPECT_THAT(seen, Not(Contains(HasSubstr("DELETE /hostgroup"))));
}

TEST_P(Attach, PassesOnTheFailureToDeleteTheNewView)
{
    onRequest(bindHosts, Reply::error(1077951819, "no"));
    onRequest("DELETE /mappingview/v1", Reply::error(1077951820, "in use"));
    EXPECT_EQ(
        outcomeOf([&] { attach(); }),
        Outcome::errorAnswer(1077951820, journal::errorAnswer(1077951820, "in use", "deleteMappingView")));
    EXPECT_EQ(platform.journal().back(), "record! " + GetParam().attach + " 1077951820");
}

TEST_P(Attach, GoesOnWhenAddingToTheGroupsIsOnlyWarnedOf)
{
    onRequest("POST /lungroup/associate", Reply::error(1077948997, "in it"));
    onRequest("POST /hostgroup/associate", Reply::noAnswer(7));
    EXPECT_EQ(attach(), 0);
    EXPECT_THAT(platform.lines("warn").size(), 2u);
    EXPECT_EQ(named().back(), bindLuns);
}

TEST_P(Attach, EndsAtTheFirstFailureOfAHandlerWithItsExceptionAndCode)
{
    const Lines steps = {read(),
                         "GET /iscsi_initiator/iqn",
                         "GET /host/h1",
                         listOf("21", "h1"),
                         "POST /lungroup/ ",
                         "POST /hostgroup ",
                         "POST /mappingview "};
    for (const std::string& step : steps) {
        restart();
        onRequest(step, Reply::error(1077949003, "broken"));
        const Outcome outcome = outcomeOf([&] { attach(); });
        EXPECT_EQ(outcome.kind, Outcome::ERROR_ANSWER) << step;
        EXPECT_EQ(outcome.code, 1077949003) << step;
        EXPECT_THAT(platform.requests().back().text(), StartsWith(step));
        EXPECT_EQ(platform.journal().back(), "record! " + GetParam().attach + " 1077949003") << step;
        EXPECT_THAT(platform.lines("DELETE"), IsEmpty()) << step;
    }
}

TEST_P(Attach, EndsWhenACreatedObjectCannotBeReadBack)
{
    onRequest("GET /lungroup/lg1", Reply::error(1077949006, "later"));
    const std::string operation = GetParam().name == "Lun" ? "addLunToLunGroup" : "addSnapshotToLunGroup";
    EXPECT_EQ(outcomeOf([&] { attach(); }), Outcome::failed("LunGroup id is empty! " + operation));
    EXPECT_EQ(platform.journal().back(), "record! " + GetParam().attach + " 1");
}

TEST_P(Attach, RefusesObjectsAndInitiatorsThatTheArrayDoesNotKnow)
{
    onRequest("GET /iscsi_initiator/iqn", Reply::ok());
    const std::string initiator = "The iscsiInitiatorID is not valid! " + GetParam().attach;
    EXPECT_EQ(outcomeOf([&] { attach(); }), Outcome::failed(initiator));
    EXPECT_THAT(named(), ElementsAreArray(join(lookups(), "error: " + initiator)));
    EXPECT_EQ(platform.journal().back(), "record! " + GetParam().attach + " 1");
    onRequest(read(), Reply::ok());
    EXPECT_EQ(outcomeOf([&] { attach(); }), Outcome::failed(GetParam().notValid + GetParam().attach));
    EXPECT_EQ(platform.requests().back().text(), read());
}

INSTANTIATE_TEST_SUITE_P(Of, Attach, testing::ValuesIn(attachKinds()),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(HandlerTest, GeneratedNamesAreThePrefixAndTheTimeInSeconds)
{
    const long before = time(nullptr);
    const std::string name = handlers::attach(manager).getBuildedName("lungroup");
    const long after = time(nullptr);
    ASSERT_THAT(name, testing::MatchesRegex("lungroup_[0-9]+"));
    const long seconds = std::stol(name.substr(9));
    EXPECT_LE(before, seconds);
    EXPECT_GE(after, seconds);
}

} // namespace

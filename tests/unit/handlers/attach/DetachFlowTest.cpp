// Detaching: from one initiator's host and from every host.

#include "unit/handlers/attach/AttachTest.h"

#include <tessel/Failure.h>

namespace {

using journal::join;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

/** Reads LUN groups that do not say whether they are in a mapping view. */
class LunGroupsOfUnknownMembership : public CLunGroupHandlerImpl
{
public:
    using CLunGroupHandlerImpl::CLunGroupHandlerImpl;
    LunGroupMO getLunGroup(const std::string& lunGroupID) override
    {
        LunGroupMO lunGroup;
        lunGroup.ID = lunGroupID;
        return lunGroup;
    }
};

class Detach : public AttachTest
{
protected:
    const std::string groupsOfHost = "GET /hostgroup/associate?TYPE=14&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=h1";

    static std::string viewsOfHostGroup(const std::string& id)
    {
        return "GET /mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=14&ASSOCIATEOBJID=" + id;
    }
    static std::string viewsOfLunGroup(const std::string& id)
    {
        return "GET /mappingview/associate?TYPE=245&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + id;
    }
    static std::string lunGroupOfView(const std::string& id)
    {
        return "GET /lungroup/associate?ASSOCIATEOBJTYPE=245&ASSOCIATEOBJID=" + id;
    }
    std::string lunGroupsOfObject() const
    {
        return "GET /lungroup/associate?TYPE=256&ASSOCIATEOBJTYPE=" + GetParam().type + "&ASSOCIATEOBJID=7";
    }
    std::string removal(const std::string& group) const
    {
        return "DELETE /lungroup/associate?ID=" + group + "&ASSOCIATEOBJTYPE=" + GetParam().type +
               "&ASSOCIATEOBJID=7";
    }
    static std::string count(const std::string& what, const std::string& group)
    {
        return "GET /" + what + "/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group;
    }
    static Lines counts(const std::string& group) { return {count("lun", group), count("snapshot", group)}; }

    static std::string outOfView(const std::string& group, const std::string& view)
    {
        return "PUT /mappingview/remove_associate ID=string:" + view +
               " TYPE=int:245 ASSOCIATEOBJTYPE=ul:256 ASSOCIATEOBJID=string:" + group;
    }

    /** The view with a LUN group that holds the object. */
    void onView(const std::string& view, const std::string& group)
    {
        onRequest("GET /mappingview/" + view, object(view));
        onRequest(lunGroupOfView(view), object(group));
        onRequest("GET /lungroup/" + group, object(group));
        onRequest(listOf("256", group), Reply::list(R"([{"ID":"7"}])"));
    }

    void onGroupCount(const std::string& group, const char* luns, const char* snapshots)
    {
        const auto number = [](const char* n) {
            return Reply::object(std::string(R"({"COUNT":")") + n + "\"}");
        };
        onRequest(count("lun", group), number(luns));
        onRequest(count("snapshot", group), number(snapshots));
    }

    void onHostGroups(const char* list, const std::vector<std::string>& ids)
    {
        onRequest(groupsOfHost, Reply::list(list));
        for (const std::string& id : ids) {
            onRequest("GET /hostgroup/" + id, object(id));
        }
    }

    Lines lookups() const { return {read(), "GET /iscsi_initiator/iqn"}; }

    /** An early end: the line, the record, nothing thrown and no leave line. */
    void expectEndedEarly(const std::string& text)
    {
        EXPECT_EQ(named().back(), "error: " + text + GetParam().detach);
        EXPECT_EQ(platform.journal().back(), "record! " + GetParam().detach + " 1");
        EXPECT_THAT(platform.lines(journal::leave(GetParam().detach)), IsEmpty());
        EXPECT_EQ(ovra::tessel::lastFailure().kind, ovra::tessel::FailureKind::ARGUMENT);
        EXPECT_EQ(ovra::tessel::lastFailure().message, text + GetParam().detach);
    }
};

TEST_P(Detach, WalksGroupsViewsAndLunGroupsAndDeletesAnEmptiedOne)
{
    onHostGroups(R"([{"ID":"hg1"},{"ID":"hg2"}])", {"hg1", "hg2"});
    onRequest(viewsOfHostGroup("hg1"), Reply::list(R"([{"ID":"v1"}])"));
    onRequest(viewsOfHostGroup("hg2"), Reply::list(R"([{"ID":"v2"}])"));
    onView("v1", "lg1");
    onView("v2", "lg2");
    onGroupCount("lg1", "0", "0");
    onGroupCount("lg2", "1", "0");
    EXPECT_EQ(detach(), 0);
    const auto walk = [&](const char* hostGroup, const char* view, const char* group) {
        return join(viewsOfHostGroup(hostGroup), std::string("GET /mappingview/") + view,
                    lunGroupOfView(view), std::string("GET /lungroup/") + group, listOf("256", group), read(),
                    removal(group), counts(group));
    };
    EXPECT_THAT(named(),
                ElementsAreArray(join(lookups(), "GET /host/h1", groupsOfHost, "GET /hostgroup/hg1",
                                      "GET /hostgroup/hg2", walk("hg1", "v1", "lg1"), outOfView("lg1", "v1"),
                                      "DELETE /lungroup/lg1", walk("hg2", "v2", "lg2"))));
    EXPECT_THAT(platform.lines("record " + GetParam().detach),
                ElementsAre("record " + GetParam().detach + " 0"));
    EXPECT_EQ(platform.journal().front(), journal::enter(GetParam().detach));
    EXPECT_EQ(platform.journal().back(), journal::leave(GetParam().detach));
}

TEST_P(Detach, KeepsALunGroupThatStillHoldsLunsOrSnapshots)
{
    for (const auto& left : {std::make_pair("1", "0"), std::make_pair("0", "1")}) {
        onHostGroups(R"([{"ID":"hg1"}])", {"hg1"});
        onRequest(viewsOfHostGroup("hg1"), Reply::list(R"([{"ID":"v1"}])"));
        onView("v1", "lg1");
        onGroupCount("lg1", left.first, left.second);
        EXPECT_EQ(detach(), 0);
        EXPECT_EQ(named().back(), count("snapshot", "lg1"));
    }
    EXPECT_THAT(platform.lines("PUT"), IsEmpty());
    EXPECT_THAT(platform.lines("DELETE /lungroup/lg1"), IsEmpty());
}

TEST_P(Detach, SkipsViewsWithoutALunGroup)
{
    onHostGroups(R"([{"ID":"hg1"}])", {"hg1"});
    onRequest(viewsOfHostGroup("hg1"), Reply::list(R"([{"ID":"v1"}])"));
    onRequest("GET /mappingview/v1", object("v1"));
    EXPECT_EQ(detach(), 0);
    EXPECT_THAT(named(), Contains(lunGroupOfView("v1")));
    expectEndedEarly("MappingView was not existed! ");
}

TEST_P(Detach, RemovesOnlyTheObjectItselfWhateverTheArrayLists)
{
    onHostGroups(R"([{"ID":"hg1"}])", {"hg1"});
    onRequest(viewsOfHostGroup("hg1"), Reply::list(R"([{"ID":"v1"}])"));
    onView("v1", "lg1");
    onRequest(listOf("256", "lg1"), Reply::list(R"([{"ID":"70"},{"ID":"6"}])"));
    onRequest("GET " + GetParam().get + "/70", object("70"));
    onRequest("GET " + GetParam().get + "/6", object("6"));
    EXPECT_EQ(detach(), 0);
    EXPECT_THAT(platform.lines("DELETE"), IsEmpty());
    expectEndedEarly("MappingView was not existed! ");
}

TEST_P(Detach, OfAnInitiatorWithoutAHostSaysSoAndReturns0)
{
    onRequest("GET /iscsi_initiator/iqn", object("iqn"));
    EXPECT_EQ(detach(), 0);
    EXPECT_THAT(named(),
                ElementsAreArray(join(lookups(), "error: Host was not existed! " + GetParam().detach)));
    expectEndedEarly("Host was not existed! ");
}

TEST_P(Detach, OfAHostThatDoesNotSeeTheObjectSaysSoAndReturns0)
{
    EXPECT_EQ(detach(), 0);
    EXPECT_THAT(named(), ElementsAreArray(join(lookups(), "GET /host/h1", groupsOfHost,
                                               "error: MappingView was not existed! " + GetParam().detach)));
    expectEndedEarly("MappingView was not existed! ");
}

TEST_P(Detach, RefusesObjectsAndInitiatorsThatTheArrayDoesNotKnow)
{
    onRequest("GET /iscsi_initiator/iqn", Reply::ok());
    EXPECT_EQ(outcomeOf([&] { detach(); }),
              Outcome::failed("The iscsiInitiatorID is not valid! " + GetParam().detach));
    onRequest(read(), Reply::ok());
    for (const char* const initiator : {"iqn", "0"}) {
        EXPECT_EQ(outcomeOf([&] { detach("7", initiator); }),
                  Outcome::failed(GetParam().notValid + GetParam().detach));
        EXPECT_EQ(platform.requests().back().text(), read());
        EXPECT_EQ(platform.journal().back(), "record! " + GetParam().detach + " 1");
    }
}

TEST_P(Detach, PassesOnTheFailureOfAHandler)
{
    onRequest(groupsOfHost, Reply::noAnswer(28));
    EXPECT_EQ(outcomeOf([&] { detach(); }), Outcome::failed(journal::noAnswer("getHostGroupByHost")));
    EXPECT_EQ(platform.journal().back(), "record! " + GetParam().detach + " 28");
}

TEST_P(Detach, NeverDeletesALunGroupWhoseCountCannotBeRead)
{
    onHostGroups(R"([{"ID":"hg1"}])", {"hg1"});
    onRequest(viewsOfHostGroup("hg1"), Reply::list(R"([{"ID":"v1"}])"));
    onView("v1", "lg1");
    EXPECT_EQ(outcomeOf([&] { detach(); }), Outcome::failed(journal::noAnswer("getCountByAssociate")));
    EXPECT_THAT(platform.lines("DELETE"), ElementsAre(removal("lg1")));
    EXPECT_THAT(platform.lines("PUT"), IsEmpty());
}

TEST_P(Detach, EverywhereTakesEmptiedLunGroupsOutOfTheirViewsAndDeletesThem)
{
    onRequest(lunGroupsOfObject(), Reply::list(R"([{"ID":"lg1"},{"ID":"lg2"},{"ID":"lg3"}])"));
    onRequest("GET /lungroup/lg1", object("lg1", R"(,"ISADD2MAPPINGVIEW":"true")"));
    onRequest("GET /lungroup/lg2", object("lg2", R"(,"ISADD2MAPPINGVIEW":"true")"));
    onRequest("GET /lungroup/lg3", object("lg3", R"(,"ISADD2MAPPINGVIEW":"false")"));
    onRequest(viewsOfLunGroup("lg1"), Reply::list(R"([{"ID":"v1"},{"ID":"v2"}])"));
    onRequest("GET /mappingview/v1", object("v1"));
    onRequest("GET /mappingview/v2", object("v2"));
    onGroupCount("lg1", "0", "0");
    onGroupCount("lg2", "0", "2");
    onGroupCount("lg3", "0", "0");
    EXPECT_EQ(detach("7", "0"), 0);
    EXPECT_THAT(named(), ElementsAreArray(
                             join(read(), lunGroupsOfObject(), "GET /lungroup/lg1", "GET /lungroup/lg2",
                                  "GET /lungroup/lg3", removal("lg1"), counts("lg1"), viewsOfLunGroup("lg1"),
                                  "GET /mappingview/v1", "GET /mappingview/v2", outOfView("lg1", "v1"),
                                  outOfView("lg1", "v2"), "DELETE /lungroup/lg1", removal("lg2"),
                                  counts("lg2"), removal("lg3"), counts("lg3"), "DELETE /lungroup/lg3")));
    EXPECT_EQ(platform.journal().back(), journal::leave(GetParam().detach));
}

TEST_P(Detach, EverywhereTakesALunGroupOfUnknownMembershipForOneInAView)
{
    onRequest(lunGroupsOfObject(), Reply::list(R"([{"ID":"lg1"}])"));
    partial.lunGroups = std::make_unique<LunGroupsOfUnknownMembership>(&partial);
    onGroupCount("lg1", "0", "0");
    EXPECT_EQ(detach("7", "0"), 0);
    EXPECT_THAT(named(), Contains(viewsOfLunGroup("lg1")));
    EXPECT_EQ(named().back(), "DELETE /lungroup/lg1");
}

TEST_P(Detach, EverywhereOfAnObjectInNoLunGroupSaysSoAndReturns0)
{
    EXPECT_EQ(detach("7", "0"), 0);
    EXPECT_THAT(named(), ElementsAre(read(), lunGroupsOfObject(),
                                     "error: LunGroup do not exist! " + GetParam().detach));
    expectEndedEarly("LunGroup do not exist! ");
    EXPECT_THAT(platform.lines("GET /iscsi_initiator"), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, Detach, testing::ValuesIn(attachKinds()),
                         [](const auto& tested) { return tested.param.name; });

} // namespace

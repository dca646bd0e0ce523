#include "ArrayTest.h"
#include "Codes.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** LUNs 1 to 3 in a LUN group, and one outside. */
class SimulatorQuery : public ArrayTest
{
protected:
    SimulatorQuery() : group(named("/lungroup/", "g"))
    {
        for (const std::string name : {"db", "db & log+1", "salt and pepper", "outside"}) {
            const std::string id = lun(name);
            if (name != "outside") {
                EXPECT_EQ(associate("POST", "/lungroup/associate", group, 11, id).code(), 0);
            }
        }
    }

    Reply query(const std::string& filter, const std::string& range = "")
    {
        return client.get("/lun/associate?" + filter +
                          "TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group + range);
    }

    std::string group;
};

TEST_F(SimulatorQuery, WithoutAFilterAllMembersAreListedInOrder)
{
    EXPECT_THAT(query("").ids(), ElementsAre("1", "2", "3"));
}

TEST_F(SimulatorQuery, ConditionsAreJoinedWithAnd)
{
    EXPECT_THAT(query("filter=NAME:db&").ids(), ElementsAre("1"));
    EXPECT_THAT(query("filter=NAME:db%20and%20ALLOCTYPE:0&").ids(), ElementsAre("1"));
    EXPECT_THAT(query("filter=NAME:db%20and%20ALLOCTYPE:1&").ids(), IsEmpty());
    EXPECT_THAT(
        query("filter=ID:2%20and%20RUNNINGSTATUS:27%20and%20HEALTHSTATUS:1%20and%20PARENTID:0&").ids(),
        ElementsAre("2"));
}

TEST_F(SimulatorQuery, FlagsAreFilteredByNumberOrText)
{
    EXPECT_THAT(client.get("/lun?filter=ISADD2LUNGROUP:0").ids(), ElementsAre("4"));
    EXPECT_THAT(client.get("/lun?filter=ISADD2LUNGROUP:false").ids(), ElementsAre("4"));
    EXPECT_THAT(query("filter=ISADD2LUNGROUP:1&").ids(), ElementsAre("1", "2", "3"));
}

TEST_F(SimulatorQuery, EncodedSeparatorsInAValueStayData)
{
    EXPECT_THAT(query("filter=NAME:db%20%26%20log%2B1&").ids(), ElementsAre("2"));
    EXPECT_THAT(query("filter=NAME:db%20%2526%20log%2B1&").ids(), IsEmpty());
    EXPECT_THAT(query("filter=NAME:salt%20and%20pepper&").ids(), ElementsAre("3"));
    EXPECT_THAT(query("filter=NAME:x%20and%20ID%3A2&").ids(), IsEmpty());
    EXPECT_EQ(query("filter=NAME:db%20%26%20log+1&").ids(), std::vector<std::string>{})
        << "a raw plus is a blank";
}

TEST_F(SimulatorQuery, ARangeTakesItsFirstAndLeavesOutItsLast)
{
    EXPECT_THAT(query("", "&range=[0-1]").ids(), ElementsAre("1"));
    EXPECT_THAT(query("", "&range=[1-3]").ids(), ElementsAre("2", "3"));
    EXPECT_THAT(query("", "&range=%5B2-100%5D").ids(), ElementsAre("3"));
    EXPECT_THAT(query("", "&range=[3-4]").ids(), IsEmpty());
    EXPECT_THAT(query("", "&range=[1-1]").ids(), IsEmpty());
    EXPECT_EQ(query("", "&range=[1-1]").code(), 0);
    EXPECT_FALSE(query("", "&range=[3-4]").json.isMember("data"));
    EXPECT_THAT(query("filter=ALLOCTYPE:0&", "&range=[1-2]").ids(), ElementsAre("2"));
}

TEST_F(SimulatorQuery, MalformedQueriesAreRefused)
{
    for (const std::string filter :
         {"filter=&", "filter=NAME&", "filter=name:db&", "filter=WWN:6&", "filter=NAME:a%20and%20SIZE:1&",
          "filter=NAME:%zz&", "filter=NAME:a&filter=ID:1&", "FILTER=NAME:a&", "filter&",
          "filter=%20and%20NAME:a&"}) {
        EXPECT_EQ(query(filter).code(), code::QUERY_MALFORMED) << filter;
    }
    for (const std::string range : {"[0]", "0-1", "[0-1", "[-1-2]", "[2-1]", "[a-b]", "[]", "[0-1]x", "x0-1]",
                                    "[0-1x", "[0-99999999999999999999]"}) {
        EXPECT_EQ(query("", "&range=" + range).code(), code::QUERY_MALFORMED) << range;
    }
    EXPECT_EQ(client.get("/lun/1?x=1").code(), code::QUERY_MALFORMED);
    EXPECT_EQ(client.get("/lun?TYPE=12").code(), code::MEMBER_INVALID);
    EXPECT_EQ(client.get("/lun/associate?ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=1").code(),
              code::ASSOCIATION_UNSUPPORTED)
        << "of a LUN with a LUN";
    EXPECT_EQ(client.get("/lun/associate?TYPE=12&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group).code(),
              code::MEMBER_INVALID);
    EXPECT_EQ(client.get("/lun/associate?TYPE=11").code(), code::MEMBER_MISSING);
    EXPECT_EQ(client.get("/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256").code(), code::MEMBER_MISSING);
    EXPECT_EQ(client.get("/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=").code(),
              code::MEMBER_MISSING);
    EXPECT_EQ(client.get("/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=999&ASSOCIATEOBJID=1").code(),
              code::ASSOCIATION_UNSUPPORTED);
    EXPECT_EQ(client.get("/lun/associate?TYPE=11&ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=99").code(),
              code::OBJECT_MISSING);
}

TEST_F(SimulatorQuery, CountsAreDecimalTexts)
{
    const Reply members = client.get("/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group);
    EXPECT_TRUE(members.data()["COUNT"].isString());
    EXPECT_EQ(members.data()["COUNT"], "3");
    EXPECT_EQ(client.get("/snapshot/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group).data()["COUNT"],
              "0");
    EXPECT_EQ(client.get("/lun/count").data()["COUNT"], "4");
    EXPECT_EQ(client.get("/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=99").code(), code::OBJECT_MISSING);
    EXPECT_EQ(client.get("/lun/count?ASSOCIATEOBJTYPE=256").code(), code::MEMBER_MISSING);
    EXPECT_EQ(client.get("/lun/count?ASSOCIATEOBJID=" + group).code(), code::MEMBER_MISSING);
}

TEST_F(SimulatorQuery, PagesOfALargeGroupFollowItsChanges)
{
    const std::string many = named("/lungroup/", "many");
    const auto ids = array.bulkLuns(300, many);
    const auto page = [&](int from, int to) {
        return client
            .get("/lun/associate?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + many + "&range=[" +
                 std::to_string(from) + "-" + std::to_string(to) + "]")
            .ids();
    };
    EXPECT_EQ(page(0, 300), ids);
    EXPECT_EQ(page(298, 400), std::vector<std::string>(ids.end() - 2, ids.end()));
    client.del("/lungroup/associate?ID=" + many + "&ASSOCIATEOBJTYPE=11&ASSOCIATEOBJID=" + ids[0]);
    EXPECT_THAT(page(0, 2), ElementsAre(ids[1], ids[2]));
    associate("POST", "/lungroup/associate", many, 11, "1");
    EXPECT_THAT(page(0, 2), ElementsAre("1", ids[1]));
    EXPECT_EQ(client.get("/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + many).data()["COUNT"], "300");
}

TEST_F(SimulatorQuery, ANameIsFoundInItsGroupAlone)
{
    EXPECT_THAT(query("filter=NAME:outside&").ids(), IsEmpty());
    EXPECT_THAT(query("filter=NAME:none&").ids(), IsEmpty());
    EXPECT_THAT(client.get("/lun?filter=NAME:outside").ids(), ElementsAre("4"));
    EXPECT_THAT(client.get("/lun?filter=NAME:outside%20and%20HEALTHSTATUS:2").ids(), IsEmpty());
}

} // namespace

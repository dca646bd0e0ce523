#include "Cli.h"

#include <algorithm>
#include <sstream>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TEST_F(MappingTest, MembersAreAddedListedAndRemoved)
{
    bindAll();
    EXPECT_EQ(cli.json({"lun", "list", "--group", lunGroup}).json()[0]["ID"], lun);
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json()[0]["ID"], lun);
    EXPECT_EQ(cli.json({"lungroup", "list", "--lun", lun}).json()[0]["ID"], lunGroup);
    EXPECT_EQ(cli.json({"lungroup", "list", "--view", view}).json()[0]["ID"], lunGroup);
    EXPECT_EQ(cli.json({"hostgroup", "list", "--host", host}).json()[0]["ID"], hostGroup);
    EXPECT_EQ(cli.json({"hostgroup", "list", "--view", view}).json()[0]["ID"], hostGroup);
    EXPECT_EQ(cli.json({"view", "list", "--lungroup", lunGroup}).json()[0]["ID"], view);
    EXPECT_EQ(cli.json({"view", "list", "--hostgroup", hostGroup}).json()[0]["ID"], view);
    EXPECT_EQ(cli.json({"lungroup", "count", lunGroup}).json()["count"].asInt(), 1);

    const Json::Value removed = cli.json({"lungroup", "remove", lunGroup, "--lun", lun}).json();
    EXPECT_EQ(removed["action"], "remove");
    EXPECT_EQ(removed["memberId"], lun);
    EXPECT_EQ(expect(0, {"lungroup", "count", lunGroup}).out, "0\n");
    EXPECT_EQ(expect(0, {"lun", "list", "--group", lunGroup}).out, "No LUNs.\n");
    expect(0, {"view", "remove", view, "--hostgroup", hostGroup});
    expect(0, {"hostgroup", "remove", hostGroup, "--host", host});
    EXPECT_EQ(cli.json({"hostgroup", "list", "--host", host}).json().size(), 0U);
}

TEST_F(MappingTest, SnapshotsAreGroupedListedAndShown)
{
    const std::string snapshot = array.createSnapshot(lun, "snap");
    expect(0, {"lungroup", "add", lunGroup, "--snapshot", snapshot});
    const Json::Value listed = cli.json({"snapshot", "list", "--group", lunGroup, "--lun", lun}).json();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(cli.json({"snapshot", "show", snapshot}).json(), listed[0]);
    EXPECT_EQ(cli.json({"lungroup", "list", "--snapshot", snapshot}).json()[0]["ID"], lunGroup);
    expect(0, {"lungroup", "remove", lunGroup, "--snapshot", snapshot});
    expect(4, {"snapshot", "show", "99"});
}

TEST_F(MappingTest, InitiatorsAreBoundAndUnbound)
{
    expect(0, {"initiator", "fc", "create", "2100001405a0ffff"});
    expect(0, {"initiator", "fc", "add", "2100001405a0ffff", "--host", host});
    EXPECT_EQ(cli.json({"initiator", "fc", "show", "2100001405a0ffff"}).json()["PARENTID"], host);
    expect(0, {"initiator", "fc", "remove", "2100001405a0ffff"});
    EXPECT_TRUE(cli.json({"initiator", "fc", "show", "2100001405a0ffff"}).json()["ISFREE"].asBool());
    expect(0, {"initiator", "iscsi", "remove", iqn});
    EXPECT_TRUE(cli.json({"initiator", "iscsi", "show", iqn}).json()["ISFREE"].asBool());
    EXPECT_EQ(cli.json({"initiator", "iscsi", "add", iqn, "--host", host}).json()["hostId"], host);
}

TEST_F(MappingTest, AMemberThatTheArrayDidNotAddIsAFailure)
{
    array.addErrorFault("POST", "/lungroup/associate", 1077000001);
    EXPECT_THAT(expect(1, {"lungroup", "add", lunGroup, "--lun", lun}).err, HasSubstr("did not add LUN"));
    array.addErrorFault("POST", "/hostgroup/associate", 1077000001);
    EXPECT_THAT(expect(1, {"hostgroup", "add", hostGroup, "--host", host}).err,
                HasSubstr("did not add host"));
    expect(0, {"lungroup", "add", lunGroup, "--lun", lun});
    array.addErrorFault("DELETE", "/lungroup/associate", 1077000001);
    EXPECT_THAT(expect(1, {"lungroup", "remove", lunGroup, "--lun", lun}).err,
                HasSubstr("did not remove LUN"));
}

TEST_F(MappingTest, LongListsAreReadPageByPageAndPagesAlone)
{
    const auto ids = array.bulkLuns(230, lunGroup);
    const Outcome all = cli.json({"lun", "list", "--group", lunGroup});
    ASSERT_EQ(all.exitCode, 0) << all;
    EXPECT_EQ(all.json().size(), ids.size());
    EXPECT_GT(array.requests("GET", "/lun/associate"), 1UL) << "more than one page";
    const Json::Value page =
        cli.json({"lun", "list", "--group", lunGroup, "--start", "5", "--count", "3"}).json();
    ASSERT_EQ(page.size(), 3U);
    EXPECT_EQ(page[0]["ID"], all.json()[5]["ID"]);
    EXPECT_EQ(cli.json({"lun", "list", "--group", lunGroup, "--start", "225"}).json().size(), 5U);
    EXPECT_EQ(all.err, "") << "no progress where nobody looks";
}

TEST_F(MappingTest, TablesAreAlignedAndShowTheColumnsAskedFor)
{
    expect(0, {"lungroup", "add", lunGroup, "--lun", lun});
    EXPECT_EQ(expect(0, {"lun", "list", "--group", lunGroup, "--columns", "NAME,CAPACITY,ALLOCTYPE"}).out,
              "NAME  CAPACITY  ALLOCTYPE\ndb01  1 MiB             0\n");
    EXPECT_THAT(expect(0, {"lun", "list", "--group", lunGroup, "--columns", "all"}).out,
                HasSubstr("WORKINGCONTROLLER"));
}

TEST_F(MappingTest, TablesHoldNamesOfAnyScriptAndNothingThatSteersTheTerminal)
{
    expect(0, {"lungroup", "add", lunGroup, "--lun", lun});
    Json::Value fault(Json::objectValue);
    fault["method"] = "GET";
    fault["path"] = "/lun/" + lun;
    fault["action"] = "answer";
    fault["count"] = 3;
    fault["body"] = R"({"data":{"ID":")" + lun +
                    R"(","NAME":"日本\u001b[2J\u009b\u202e","CAPACITY":"2048"},"error":{"code":0}})";
    array.addFault(fault);
    const Words list = {"lun", "list", "--group", lunGroup, "--columns", "NAME,ID"};
    EXPECT_EQ(expect(0, list).out, "NAME                     ID\n日本\\x1B[2J\\x9B\\u{202E}   " + lun + "\n");
    EXPECT_THAT(cli.json(list).out, HasSubstr("日本\\u001b[2J\\u009B\\u202E\""));
    cli.environment["LC_ALL"] = "C";
    EXPECT_THAT(expect(0, list).out, HasSubstr("\\u{65E5}\\u{672C}\\x1B[2J"));
}

TEST_F(MappingTest, ACountIsTheMostThatIsListed)
{
    array.bulkLuns(130, lunGroup);
    const auto listed = [&](const char* count) {
        return cli.json({"lun", "list", "--group", lunGroup, "--count", count}).json().size();
    };
    EXPECT_EQ(listed("0"), 0U);
    EXPECT_EQ(listed("1"), 1U);
    EXPECT_EQ(listed("120"), 120U) << "more than a page";
    EXPECT_EQ(listed("200"), 130U);
    EXPECT_EQ(expect(0, {"lun", "list", "--group", lunGroup, "--count", "0"}).out, "No LUNs.\n");
}

TEST_F(MappingTest, AListComesOutAsItIsReadAndItsJsonEndsOnlyWhenItIsWhole)
{
    const auto ids = array.bulkLuns(150, lunGroup);
    array.addErrorFault("GET", "/lun/" + ids[140], 1077000001, 2);
    const Outcome text = expect(3, {"lun", "list", "--group", lunGroup});
    EXPECT_EQ(std::count(text.out.begin(), text.out.end(), '\n'), 101) << "the titles and the first page";
    const Outcome json = cli.json({"lun", "list", "--group", lunGroup});
    EXPECT_EQ(json.exitCode, 3);
    EXPECT_EQ(json.out.front(), '[');
    EXPECT_EQ(json.out.find("\n]"), std::string::npos);
}

TEST_F(MappingTest, TheColumnsOfALongListStayWhereTheyAre)
{
    array.bulkLuns(150, lunGroup);
    const Outcome listed = expect(0, {"lun", "list", "--group", lunGroup});
    const size_t column = listed.out.find("WWN");
    std::istringstream lines(listed.out);
    int aligned = 0;
    for (std::string line; std::getline(lines, line);) {
        aligned += line.size() > column && line[column - 1] == ' ' && line[column] != ' ' ? 1 : 0;
    }
    EXPECT_EQ(aligned, 151) << "the titles and every LUN";
}

TEST_F(MappingTest, AttachMakesTheLunVisibleAndDetachTakesItAway)
{
    const Outcome attached = cli.json({"attach", "lun", lun, "--initiator", iqn});
    ASSERT_EQ(attached.exitCode, 0) << attached;
    EXPECT_EQ(attached.json()["hostId"], host);
    EXPECT_FALSE(attached.json()["wasVisible"].asBool());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json()[0]["ID"], lun);
    EXPECT_THAT(expect(0, {"attach", "lun", lun, "--initiator", iqn}).out, HasSubstr("already"));
    const Json::Value again = cli.json({"attach", "lun", lun, "--initiator", iqn}).json();
    EXPECT_TRUE(again["wasVisible"].asBool());
    EXPECT_EQ(again["action"], "attach");
    EXPECT_EQ(again["object"], "LUN");
    EXPECT_EQ(again["initiator"], iqn);

    EXPECT_THAT(expect(0, {"detach", "lun", lun, "--initiator", iqn}).out,
                HasSubstr("no longer visible to host"));
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 0U);
    EXPECT_FALSE(cli.json({"detach", "lun", lun, "--initiator", iqn}).json()["wasVisible"].asBool());
}

TEST_F(MappingTest, SnapshotsAttachAsLunsDoAndDetachFromEveryHost)
{
    const std::string snapshot = array.createSnapshot(lun, "snap");
    expect(0, {"attach", "snapshot", snapshot, "--initiator", iqn});
    EXPECT_THAT(expect(4, {"attach", "snapshot", "99", "--initiator", iqn}).err,
                HasSubstr("no snapshot with the ID '99'"));
    EXPECT_EQ(cli.json({"snapshot", "list", "--host", host}).json()[0]["ID"], snapshot);
    const Outcome gone = cli.json({"detach", "snapshot", snapshot, "--all-hosts"});
    ASSERT_EQ(gone.exitCode, 0) << gone;
    EXPECT_TRUE(gone.json()["hostId"].isNull());
    EXPECT_EQ(cli.json({"snapshot", "list", "--host", host}).json().size(), 0U);
}

TEST_F(MappingTest, TheInitiatorIsThisHostsOwnUnlessNamed)
{
    const Folder folder;
    const std::string file = folder.write("initiatorname.iscsi", "## comment\nInitiatorName=" + iqn + "\n");
    expect(0, {"attach", "lun", lun, "--initiator-file", file});
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 1U);
    folder.write("root/etc/iscsi/initiatorname.iscsi", "InitiatorName=" + iqn + "\n");
    cli.environment["TESSELCTL_ROOT"] = folder.path() + "/root";
    expect(0, {"detach", "lun", lun});
    cli.environment["TESSELCTL_ROOT"] = folder.path() + "/nowhere";
    EXPECT_THAT(expect(1, {"detach", "lun", lun}).err, HasSubstr("--initiator"));
}

TEST_F(MappingTest, AnAttachAfterWhichTheHostSeesNothingIsAFailure)
{
    array.addErrorFault("PUT", "/mappingview/create_associate", 1077000001, 1000);
    const Outcome outcome = expect(1, {"attach", "lun", lun, "--initiator", iqn});
    EXPECT_THAT(outcome.err, HasSubstr("does not see LUN " + lun));
    EXPECT_THAT(outcome.err, HasSubstr("tesselctl explain lun"));
}

TEST_F(MappingTest, AnAttachThatMeetsNoAnswerIsNotTakenForOneThatTheArrayRefused)
{
    array.addFault(R"({"method":"PUT","path":"/mappingview/create_associate","action":"close","count":0})");
    const Outcome outcome = expect(1, {"attach", "lun", lun, "--initiator", iqn});
    EXPECT_THAT(outcome.err, HasSubstr("ended the connection without an answer"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("does not see")));
}

TEST_F(MappingTest, ADetachAfterWhichTheHostStillSeesItIsAFailure)
{
    bindAll();
    array.addErrorFault("DELETE", "/lungroup/associate", 1077000001, 1000);
    EXPECT_THAT(expect(1, {"detach", "lun", lun, "--initiator", iqn, "--force"}).err,
                HasSubstr("still sees LUN " + lun));
    EXPECT_THAT(expect(1, {"detach", "lun", lun, "--all-hosts", "--force"}).err,
                HasSubstr("a LUN group still holds"));
}

TEST_F(MappingTest, ADetachThatTakesTheLunFromOthersIsRefusedWithoutForce)
{
    bindAll();
    const std::string other = make({"hostgroup", "create", "--name", "others"});
    const std::string second = make({"view", "create", "--name", "second"});
    expect(0, {"view", "add", second, "--lungroup", lunGroup});
    expect(0, {"view", "add", second, "--hostgroup", other});
    const std::string kept = array.createLun("kept");
    expect(0, {"lungroup", "add", lunGroup, "--lun", kept});

    const Outcome refused = expect(1, {"detach", "lun", lun, "--initiator", iqn});
    EXPECT_THAT(refused.err, HasSubstr("host group " + other + " (others)"));
    EXPECT_THAT(refused.err, HasSubstr("--force"));
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 2U) << "nothing was detached";

    const Json::Value done = cli.json({"detach", "lun", lun, "--initiator", iqn, "--force"}).json();
    EXPECT_EQ(done["lunGroups"][0]["id"], lunGroup);
    EXPECT_THAT(done["otherHostGroups"].toStyledString(), HasSubstr("host group " + other + " (others)"));
}

TEST_F(MappingTest, ADetachThatEmptiesAGroupOfSomebodyElseIsRefusedWithoutForce)
{
    bindAll();
    const Outcome refused = expect(1, {"detach", "lun", lun, "--all-hosts"});
    EXPECT_THAT(refused.err, HasSubstr("LUN group " + lunGroup + " (luns), which no attach has made"));
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 1U);
    const Outcome done = expect(0, {"detach", "lun", lun, "--all-hosts", "--force"});
    EXPECT_THAT(done.out, HasSubstr("taken out of LUN group " + lunGroup + " (luns)\n"));
    expect(0, {"lungroup", "show", lunGroup});
}

TEST_F(MappingTest, AMemberThatIsNoneAndOneThatIsOneAlreadyAreTold)
{
    EXPECT_EQ(expect(0, {"lungroup", "remove", lunGroup, "--lun", lun}).out,
              "LUN " + lun + " was not in LUN group " + lunGroup + "\n");
    bindAll();
    const Outcome again = cli.json({"hostgroup", "add", hostGroup, "--host", host});
    EXPECT_TRUE(again.json()["wasMember"].asBool()) << again;
}

TEST_F(MappingTest, AttachOfWhatTheArrayDoesNotKnowEndsWithCode4)
{
    expect(4, {"attach", "lun", "99", "--initiator", iqn});
    expect(4, {"attach", "lun", lun, "--initiator", "iqn.no-such"});
    EXPECT_THAT(expect(4, {"detach", "snapshot", "99", "--initiator", iqn}).err,
                HasSubstr("the array has no snapshot with the ID '99'"));
}

} // namespace

#include "Cli.h"

#include <utility>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/** A type of object that can be created, listed where something holds it, and deleted. */
struct Kind
{
    const char* name;
    Words create;
    Words kind;
    const char* title;
    bool canBeDeleted;
};

void PrintTo(const Kind& one, std::ostream* stream)
{
    *stream << one.name;
}

class ObjectOf : public CliTest, public ::testing::WithParamInterface<Kind>
{
protected:
    Words line(const std::string& action, const Words& more) const
    {
        Words words = GetParam().kind;
        words.push_back(action);
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
};

const Kind KINDS[] = {
    {"Lun", {"lun", "create", "--name", "n1", "--pool", "0", "--size", "1MiB"}, {"lun"}, "LUN", false},
    {"Host", {"host", "create", "--name", "n1", "--os", "0", "--ip", "192.0.2.9"}, {"host"}, "host", false},
    {"LunGroup",
     {"lungroup", "create", "--name", "n1", "--description", "d"},
     {"lungroup"},
     "LUN group",
     true},
    {"HostGroup", {"hostgroup", "create", "--name", "n1"}, {"hostgroup"}, "host group", true},
    {"View", {"view", "create", "--name", "n1", "--in-band-commands"}, {"view"}, "mapping view", true},
    {"IscsiInitiator",
     {"initiator", "iscsi", "create", "iqn.2024-05.org.example:a", "--name", "n1"},
     {"initiator", "iscsi"},
     "iSCSI initiator",
     true},
    {"FCInitiator",
     {"initiator", "fc", "create", "2100001405a0ffff", "--name", "n1"},
     {"initiator", "fc"},
     "FC initiator",
     true},
};

TEST_P(ObjectOf, IsCreatedShownAndDeletedInBothForms)
{
    const Outcome created = cli.json(GetParam().create);
    ASSERT_EQ(created.exitCode, 0) << created;
    const Json::Value record = created.json();
    EXPECT_EQ(record["NAME"].asString(), "n1");

    const std::string id = record["ID"].asString();
    EXPECT_EQ(cli.json(line("show", {id})).json(), record);
    const Outcome text = expect(0, line("show", {id}));
    for (const auto& field : record.getMemberNames()) {
        EXPECT_THAT(text.out, HasSubstr(field + " ")) << "every field has a line";
    }
    if (!GetParam().canBeDeleted) {
        return;
    }
    const Outcome deleted = cli.json(line("delete", {id}));
    EXPECT_EQ(deleted.exitCode, 0) << deleted;
    EXPECT_EQ(deleted.json()["action"], "delete");
    EXPECT_EQ(deleted.json()["object"], GetParam().title);
    EXPECT_EQ(deleted.json()["id"], id);
    expect(4, line("show", {id}));
}

TEST_P(ObjectOf, ThatTheArrayDoesNotKnowEndsWithCode4)
{
    const Outcome text = expect(4, line("show", {"iqn.no-such:7777"}));
    EXPECT_THAT(text.err, HasSubstr(std::string("the array has no ") + GetParam().title + " with the ID"));
    const Outcome json = cli.json(line("show", {"iqn.no-such:7777"}));
    EXPECT_EQ(json.exitCode, 4);
    EXPECT_EQ(json.out, "");
    EXPECT_EQ(json.errorJson()["error"]["exitCode"].asInt(), 4);
}

INSTANTIATE_TEST_SUITE_P(Cli, ObjectOf, ::testing::ValuesIn(KINDS),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(CliTest, UnsetFieldsAndSecretsAreNullInJson)
{
    const Json::Value initiator =
        cli.json({"initiator", "iscsi", "create", "iqn.2024-05.org.example:a"}).json();
    for (const char* field : {"NAME", "PARENTID", "CHAPPASSWORD", "CHAPOLDPASSWORDINITATORVERTARGET"}) {
        EXPECT_TRUE(initiator.isMember(field) && initiator[field].isNull()) << field;
    }
    EXPECT_TRUE(initiator["ISFREE"].isBool());
    EXPECT_TRUE(initiator["HEALTHSTATUS"].isIntegral());
}

TEST_F(CliTest, SizesAreReadAsPeopleWriteThem)
{
    const std::pair<const char*, uint64_t> sizes[] = {
        {"1048576", 1048576},   {"1M", 1048576},      {"1MiB", 1048576},    {"1mb", 1000000 - 1000000 % 512},
        {"1.5GiB", 1610612736}, {"10 MiB", 10485760}, {"1T", 1099511627776}};
    for (const auto& [text, bytes] : sizes) {
        const Outcome outcome =
            cli.json({"lun", "create", "--name", std::string("s") + text, "--pool", "1", "--size", text});
        ASSERT_EQ(outcome.exitCode, 0) << outcome;
        EXPECT_EQ(outcome.json()["CAPACITY"].asUInt64(), bytes) << text;
    }
}

TEST_F(CliTest, ASizeThatIsNoMultipleOfASectorIsRoundedDownWithANote)
{
    const Outcome outcome = expect(0, {"lun", "create", "--name", "a", "--pool", "0", "--size", "1000"});
    EXPECT_THAT(outcome.err, HasSubstr("1000 bytes are no multiple of 512; the array is asked for 512"));
    EXPECT_THAT(outcome.out, HasSubstr("512 (512 B)"));
}

TEST_F(CliTest, AThinLunBeginsWithTheInitialSizeAskedFor)
{
    const Json::Value none =
        cli.json({"lun", "create", "--name", "a", "--pool", "0", "--size", "1G", "--type", "thin"}).json();
    EXPECT_EQ(none["ALLOCTYPE"].asInt(), 1);
    EXPECT_EQ(none["ALLOCCAPACITY"].asUInt64(), 0U);
    const Json::Value some = cli.json({"lun", "create", "--name", "b", "--pool", "0", "--size", "1G",
                                       "--type", "thin", "--initial-size", "1M"})
                                 .json();
    EXPECT_EQ(some["ALLOCCAPACITY"].asUInt64(), 1048576U);
    const std::string group = make({"lungroup", "create", "--name", "g"});
    const std::string thick =
        make({"lun", "create", "--name", "c", "--pool", "0", "--size", "1M", "--type", "thick"});
    expect(0, {"lungroup", "add", group, "--lun", thick});
    expect(0, {"lungroup", "add", group, "--lun", none["ID"].asString()});
    const Json::Value listed = cli.json({"lun", "list", "--group", group, "--type", "thick"}).json();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0]["ID"], thick);
}

TEST_F(CliTest, AThinLunMayHaveItsWholeSizeAtOnceAndOnlyWhatIsGivenIsSent)
{
    array.clearJournal();
    const Json::Value made = cli.json({"lun", "create", "--name", "a", "--pool", "0", "--size", "1M",
                                       "--type", "thin", "--initial-size", "1M"})
                                 .json();
    EXPECT_EQ(made["ALLOCCAPACITY"], made["CAPACITY"]);
    for (const Json::Value& request : array.journal()) {
        EXPECT_THAT(request["body"].asString(), Not(HasSubstr("THINCAPACITYUSAGE")));
    }
    expect(0, {"lun", "create", "--name", "b", "--pool", "0", "--size", "1M", "--type", "thin",
               "--usage-threshold", "100"});
}

TEST_F(CliTest, WhatAHostBelongsToIsSentWithItsType)
{
    const std::string group = make({"hostgroup", "create", "--name", "g"});
    array.clearJournal();
    make({"host", "create", "--name", "h", "--os", "255", "--hostgroup", group});
    const std::string sent = array.journal()[1]["body"].asString();
    EXPECT_THAT(sent, HasSubstr("\"PARENTTYPE\":14"));
    EXPECT_THAT(sent, HasSubstr("\"PARENTID\":\"" + group + "\""));
    array.clearJournal();
    make({"initiator", "iscsi", "create", "iqn.2024-05.org.example:h", "--host", "1"});
    EXPECT_THAT(array.journal()[1]["body"].asString(), HasSubstr("\"PARENTTYPE\":21"));
}

TEST_F(MappingTest, AModifiedInitiatorIsNotBoundAnew)
{
    const auto sentBy = [&](const Words& more) {
        Words words = {"initiator", "iscsi", "modify", iqn};
        words.insert(words.end(), more.begin(), more.end());
        array.clearJournal();
        expect(0, words);
        std::string sent;
        for (const Json::Value& request : array.journal()) {
            sent += request["method"] == "PUT" ? request["body"].asString() : "";
        }
        return sent;
    };
    EXPECT_THAT(sentBy({"--name", "new"}), Not(HasSubstr("PARENTID")));
    EXPECT_THAT(sentBy({"--name", "newer", "--host", host}), HasSubstr("\"PARENTTYPE\":21"));
}

TEST_F(MappingTest, AnIdThatNobodyHasIsOfTheFormOfTheOneThatIsMissing)
{
    const auto asked = [&](const Words& words) {
        array.clearJournal();
        expect(4, words);
        Words paths;
        for (const Json::Value& request : array.journal()) {
            const std::string path = request["path"].asString();
            if (path.find("_initiator/") != std::string::npos || path.find("/lun/") != std::string::npos) {
                paths.push_back(path.substr(path.rfind('/') + 1));
            }
        }
        EXPECT_EQ(paths.size(), 2U);
        return paths.back();
    };
    EXPECT_EQ(asked({"lun", "show", "77"}), "4294967294");
    for (const char* wwn : {"2100001405a0fff0", "2100001405A0FFF0"}) {
        EXPECT_THAT(asked({"initiator", "fc", "show", wwn}), ::testing::MatchesRegex("[0-9a-f]{16}"));
    }
    EXPECT_THAT(asked({"initiator", "iscsi", "show", "iqn.none"}),
                ::testing::MatchesRegex("iqn.none[0-9a-f]{8}"));
}

TEST_F(CliTest, ANameCannotSteerTheTerminal)
{
    Json::Value fault(Json::objectValue);
    fault["method"] = "GET";
    fault["path"] = "/hostgroup/1";
    fault["action"] = "answer";
    fault["count"] = 2;
    fault["body"] =
        R"({"data":{"ID":"1","NAME":"a\u001b[2Jb","DESCRIPTION":"c\u202ed","ISADD2MAPPINGVIEW":"false"},)"
        R"("error":{"code":0,"description":"0"}})";
    array.addFault(fault);
    const std::string text = expect(0, {"hostgroup", "show", "1"}).out;
    EXPECT_THAT(text, HasSubstr("a\\x1B[2Jb"));
    EXPECT_THAT(text, HasSubstr("c\\u{202E}d"));
    EXPECT_EQ(cli.json({"hostgroup", "show", "1"}).json()["NAME"].asString(), "a\x1b[2Jb");
}

TEST_F(CliTest, AnEmptyIdIsToldWithTheOperationThatTakesNone)
{
    EXPECT_THAT(expect(1, {"lun", "show", ""}).err,
                ::testing::StartsWith("tesselctl: lunID is empty! (getLun); see the run log in "));
}

TEST_F(CliTest, PortsOfEveryKindAreListedAndShown)
{
    for (const std::string kind : {"fc", "fcoe", "eth"}) {
        const Json::Value ports = cli.json({"port", kind, "list"}).json();
        ASSERT_GT(ports.size(), 0U) << kind;
        const std::string id = ports[0]["ID"].asString();
        EXPECT_EQ(cli.json({"port", kind, "show", id}).json(), ports[0]);
        const std::string name = ports[0]["NAME"].asString();
        EXPECT_EQ(cli.json({"port", kind, "list", "--name", name}).json().size(), 1U);
        const std::string table = expect(0, {"port", kind, "list"}).out;
        EXPECT_THAT(table, HasSubstr("LOCATION"));
        EXPECT_THAT(table, HasSubstr(name));
    }
}

TEST_F(CliTest, ChapIsSetWithSecretsFromFilesAndStaysWhenOnlyTheNameChanges)
{
    const Folder folder;
    const std::string iqn = "iqn.2024-05.org.example:a";
    const std::string secret = folder.write("secret", "chap-secret-0001\n");
    const Words chap = {"--chap", "oneway", "--chap-name", "user", "--chap-secret-file", secret};
    Words create = {"initiator", "iscsi", "create", iqn};
    create.insert(create.end(), chap.begin(), chap.end());
    const Outcome created = cli.json(create);
    ASSERT_EQ(created.exitCode, 0) << created;
    EXPECT_TRUE(created.json()["USECHAP"].asBool());
    EXPECT_THAT(created.out, Not(HasSubstr("chap-secret")));

    const Outcome renamed = cli.json({"initiator", "iscsi", "modify", iqn, "--name", "new"});
    ASSERT_EQ(renamed.exitCode, 0) << renamed;
    EXPECT_EQ(renamed.json()["NAME"], "new");
    EXPECT_TRUE(renamed.json()["USECHAP"].asBool());
    EXPECT_EQ(renamed.json()["CHAPNAME"], "user");

    for (const std::string option : {"--chap-name", "--mutual-chap-name"}) {
        const std::string missing =
            "a new " + option + " needs its " + option.substr(0, option.rfind('-')) + "-secret-file";
        EXPECT_THAT(expect(2, {"initiator", "iscsi", "modify", iqn, option, "other"}).err,
                    HasSubstr(missing));
    }
    EXPECT_EQ(cli.json({"initiator", "iscsi", "show", iqn}).json()["CHAPNAME"], "user");

    const Outcome off = cli.json({"initiator", "iscsi", "modify", iqn, "--chap", "none"});
    ASSERT_EQ(off.exitCode, 0) << off;
    EXPECT_FALSE(off.json()["USECHAP"].asBool());
}

TEST_F(CliTest, ASecretThatEverybodyCanReadIsRefused)
{
    const Folder folder;
    const std::string open = folder.write("secret", "x\n", 0644);
    const Outcome outcome = expect(2, {"ping", "--password-file", open});
    EXPECT_THAT(outcome.err, HasSubstr("chmod 600"));
}

} // namespace

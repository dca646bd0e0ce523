#include "Cli.h"
#include "support/ArrayClient.h"
#include "support/MisbehavingServer.h"

#include <algorithm>
#include <filesystem>

using tessel_test::MisbehavingServer;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TEST_F(CliTest, PingLogsInKeepsAliveAndLogsOut)
{
    const Outcome outcome = cli.json({"ping"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    for (const char* step : {"login", "keep-alive", "logout"}) {
        EXPECT_TRUE(outcome.json()["milliseconds"][step].isDouble()) << step;
    }
    array.addFault(R"({"method":"DELETE","path":"/sessions","action":"delay","delayMs":100})");
    EXPECT_GE(cli.json({"ping"}).json()["milliseconds"]["logout"].asDouble(), 100.0);
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0) << "the session is closed";
    EXPECT_THAT(expect(0, {"ping"}).out, HasSubstr("keep-alive"));
}

TEST_F(CliTest, PingTellsALogoutThatTheArrayRefuses)
{
    array.addErrorFault("DELETE", "/sessions", 1077000001);
    const Outcome outcome = expect(1, {"ping"});
    EXPECT_THAT(outcome.err, HasSubstr("did not accept the logout: injected fault (error code 1077000001"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CliTest, ThePlaceOfTheUserIsSentAsAsked)
{
    const auto scopeOf = [&](const Words& words) {
        array.clearJournal();
        cli.run(words);
        return array.journal()[0]["body"].asString();
    };
    EXPECT_THAT(scopeOf({"ping"}), HasSubstr("\"scope\":0"));
    EXPECT_THAT(scopeOf({"ping", "--scope", "local"}), HasSubstr("\"scope\":0"));
    EXPECT_THAT(scopeOf({"ping", "--scope", "domain"}), HasSubstr("\"scope\":1"));
}

TEST_F(CliTest, AFailedCommandLogsOutToo)
{
    expect(4, {"lun", "show", "77"});
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
}

TEST_F(MappingTest, AReaderThatHasEnoughEndsTheListAndTheSession)
{
    array.bulkLuns(350, lunGroup);
    for (const std::string form : {"text", "json"}) {
        array.resetCounters();
        const Outcome outcome = cli.shell("set -o pipefail; tesselctl lun list --group " + lunGroup +
                                          " --output " + form + " | head -2");
        EXPECT_EQ(outcome.exitCode, 141) << outcome << "as tools end that know nothing of SIGPIPE";
        EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 2);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
        EXPECT_LT(array.requests("GET", "/lun/{id}"), 350UL) << "the rest is not read";
    }
}

TEST_F(MappingTest, AReaderThatHasEnoughIsToldToACallerThatIgnoresTheSignalToo)
{
    array.bulkLuns(350, lunGroup);
    const Outcome outcome =
        cli.shell("set -o pipefail; trap '' PIPE; exec 3>&1; { tesselctl lun list --group " + lunGroup +
                  "; echo ended $? >&3; } | head -2 >/dev/null");
    EXPECT_EQ(outcome.out, "ended 141\n");
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
}

TEST_F(CliTest, AnOutputThatTakesNothingIsAFailure)
{
    EXPECT_EQ(cli.shell("tesselctl host create --name a >&-").exitCode, 1);
    EXPECT_EQ(array.requests("POST", "/host"), 0UL) << "nothing is made that nobody would be told of";
    for (const char* line :
         {"tesselctl --help >&-", "tesselctl --version >/dev/full", "tesselctl ping >/dev/full"}) {
        const Outcome outcome = cli.shell(line);
        EXPECT_EQ(outcome.exitCode, 1) << line << outcome;
        EXPECT_THAT(outcome.err, HasSubstr("standard output")) << line;
    }
    EXPECT_EQ(cli.shell("tesselctl ping 2>&-").exitCode, 0);
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
}

TEST_F(CliTest, AMissingCaFileIsToldAsThat)
{
    cli.environment["OVRA_REST_CA_FILE"] = "/nowhere.pem";
    const Outcome outcome = expect(1, {"ping"});
    EXPECT_THAT(outcome.err, HasSubstr("the CA file /nowhere.pem: No such file"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("does not speak")));
}

TEST_F(CliTest, MessagesNameTheLogDirectoryThatIsReallyInUse)
{
    const Folder folder;
    const std::string library = "libOvraLogAPI.so.1";
    std::filesystem::copy_file(std::string(TESSEL_LIBRARIES) + "/" + library, folder.path() + "/" + library);
    const std::string used = folder.path() + "/elsewhere";
    folder.write("Tessel_API.ini", "[files]\ndirectory = " + used + "\n", 0644);
    cli.environment["LD_LIBRARY_PATH"] = folder.path();
    cli.environment["TESSEL_PASSWORD"] = "wrong";
    EXPECT_THAT(expect(1, {"ping"}).err, HasSubstr("run log, " + used));
    EXPECT_THAT(cli.run({"doctor"}).out, HasSubstr("log directory: " + used + "\n"));
}

TEST_F(CliTest, WithoutAPlaceForLogsTheyAreNotShownAndTheDoctorSaysSo)
{
    const Folder folder;
    const std::string library = "libOvraLogAPI.so.1";
    std::filesystem::copy_file(std::string(TESSEL_LIBRARIES) + "/" + library, folder.path() + "/" + library);
    folder.write("Tessel_API.ini", "[files]\ndirectory = /proc/none\n", 0644);
    cli.environment["LD_LIBRARY_PATH"] = folder.path();
    cli.environment["HOME"] = cli.environment["XDG_STATE_HOME"] = "/proc/none";
    EXPECT_THAT(expect(1, {"logs"}).err, HasSubstr("no log directory can be written"));
    EXPECT_THAT(cli.run({"doctor"}).out, HasSubstr("warning  log directory: none can be written\n"));
}

class OtherCodes : public MappingTest
{
protected:
    OtherCodes() : MappingTest({{"--shift-codes", "5000"}}) {}
};

TEST_F(OtherCodes, OfAnArrayDecideNothing)
{
    for (const Words& words :
         {Words{"lun", "show", "99"}, Words{"lungroup", "delete", "99"},
          Words{"initiator", "iscsi", "show", "iqn.no-such"}, Words{"lun", "list", "--host", "99"},
          Words{"attach", "lun", "99", "--initiator", iqn}}) {
        expect(4, words);
    }
    array.addErrorFault("GET", "/lun/" + lun, 1077955001);
    expect(4, {"lun", "show", lun});
    array.addErrorFault("GET", "/lun/" + lun, 1077950001);
    EXPECT_THAT(expect(3, {"lun", "show", lun}).err, Not(HasSubstr("log in again")));
    tessel_test::ArrayClient client(array);
    ASSERT_EQ(client.login().code(), 0);
    cli.environment["TESSEL_TOKEN"] = client.token;
    cli.environment["TESSEL_COOKIE"] = client.cookie;
    array.dropSessions();
    EXPECT_THAT(expect(3, {"lun", "show", lun, "--device-id", client.deviceId}).err,
                HasSubstr("; the keep-alive fails too: if the session is over, log in again"));
}

TEST_F(CliTest, OptionsOverrideTheEnvironmentAndAPasswordFileThePassword)
{
    const Folder folder;
    const std::string file = folder.write("password", array.password() + "\nsecond line\n");
    const std::string place = array.ip() + ":" + std::to_string(array.port());
    cli.environment = {
        {"TESSEL_ARRAY", "192.0.2.1"}, {"TESSEL_USER", "nobody"}, {"TESSEL_PASSWORD", "wrong"}};
    expect(0, {"ping", "--array", place, "--user", array.user(), "--password-file", file, "--ca-file",
               array.caFile()});
}

struct Trust
{
    const char* name;
    Words (*options)(const tessel_test::ArraySim&);
    int exitCode;
    const char* message;
};

void PrintTo(const Trust& one, std::ostream* stream)
{
    *stream << one.name;
}

class Trusting : public CliTest, public ::testing::WithParamInterface<Trust>
{
};

const Trust TRUSTS[] = {
    {"TheSystemsOwn", [](const auto&) { return Words{}; }, 1, "tesselctl fingerprint"},
    {"ItsPin",
     [](const auto& array) {
         return Words{"--pin", array.pinnedKey()};
     },
     0, ""},
    {"AnotherPin",
     [](const auto&) {
         return Words{"--pin", "sha256//" + std::string(43, 'A') + "="};
     },
     1, "not the pinned one"},
    {"ItsCaFile",
     [](const auto& array) {
         return Words{"--ca-file", array.caFile()};
     },
     0, ""},
    {"NothingOnRequest", [](const auto&) { return Words{"--insecure"}; }, 0, ""},
};

TEST_P(Trusting, DecidesWhetherTheArrayIsTalkedTo)
{
    cli.environment.erase("OVRA_REST_CA_FILE");
    Words words = {"ping"};
    const Words options = GetParam().options(array);
    words.insert(words.end(), options.begin(), options.end());
    EXPECT_THAT(expect(GetParam().exitCode, words).err, HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Connection, Trusting, ::testing::ValuesIn(TRUSTS),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(CliTest, AFailedLoginTellsWhatToDo)
{
    EXPECT_THAT(expect(1, {"ping", "--array", "127.0.0.1:1"}).err, HasSubstr("cannot be reached"));
    MisbehavingServer::Options options;
    options.plainHttp = true;
    const MisbehavingServer noTls(options);
    EXPECT_THAT(expect(1, {"ping", "--array", "127.0.0.1:" + std::to_string(noTls.port())}).err,
                HasSubstr("does not speak TLS"));
    cli.environment["TESSEL_PASSWORD"] = "Wrong-password-1";
    const Outcome refused = expect(1, {"ping"});
    EXPECT_THAT(refused.err, HasSubstr("refused the login of admin"));
    EXPECT_THAT(refused.err, Not(HasSubstr("Wrong-password-1")));
}

TEST_F(CliTest, AnAdoptedSessionIsUsedAndLeftOpen)
{
    tessel_test::ArrayClient client(array);
    ASSERT_EQ(client.login().code(), 0);
    const Folder folder;
    cli.environment.erase("TESSEL_PASSWORD");
    const Words adopt = {"--device-id",   client.deviceId,
                         "--token-file",  folder.write("token", client.token),
                         "--cookie-file", folder.write("cookie", client.cookie)};
    Words ping = {"ping"};
    ping.insert(ping.end(), adopt.begin(), adopt.end());
    const Outcome outcome = cli.json(ping);
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_FALSE(outcome.json()["milliseconds"].isMember("login"));
    EXPECT_EQ(array.counters()["sessions"].asInt(), 1);

    cli.environment["TESSEL_COOKIE"] = client.cookie;
    EXPECT_THAT(expect(2, {"port", "eth", "list", "--device-id", client.deviceId}).err,
                HasSubstr("needs its token"));
    cli.environment["TESSEL_TOKEN"] = client.token;
    expect(0, {"port", "eth", "list", "--device-id", client.deviceId});
    array.dropSessions();
    EXPECT_THAT(expect(1, {"ping", "--device-id", client.deviceId}).err, HasSubstr("the session is over"));
    EXPECT_THAT(expect(3, {"port", "eth", "list", "--device-id", client.deviceId}).err,
                HasSubstr("; the keep-alive fails too: if the session is over, log in again"));
    array.kill();
    EXPECT_THAT(expect(1, {"port", "eth", "list", "--device-id", client.deviceId}).err,
                HasSubstr("cannot be reached"));
}

TEST_F(CliTest, AnErrorOfTheArrayEndsWithCode3AndItsCode)
{
    array.addErrorFault("GET", "/lun/7", 1077000001);
    const Outcome text = expect(3, {"lun", "show", "7"});
    EXPECT_THAT(text.err, HasSubstr("error code 1077000001"));
    EXPECT_THAT(text.err, Not(HasSubstr("Exception")));
    array.addErrorFault("GET", "/lun/7", 1077000001);
    const Json::Value error = cli.json({"lun", "show", "7"}).errorJson()["error"];
    EXPECT_EQ(error["arrayCode"].asInt(), 1077000001);
    EXPECT_EQ(error["exitCode"].asInt(), 3);
}

TEST_F(CliTest, AnAnswerThatCannotBeReadEndsWithCode1)
{
    array.addFault(R"({"method":"GET","path":"/lun/7","action":"answer","status":200,"body":"no JSON"})");
    const Outcome outcome = expect(1, {"lun", "show", "7"});
    EXPECT_THAT(outcome.err, HasSubstr("did not answer getLun"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("Exception")));
}

} // namespace

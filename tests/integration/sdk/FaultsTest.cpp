// What a server or a network may do to the SDK: each call ends in its failure, tells it, and the next call
// works.

#include "MisbehavingServer.h"
#include "Sdk.h"
#include "support/Folder.h"

#include <ovra/log/LogAPI.h>

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

using tessel_test::Behaviour;
using tessel_test::Certificate;
using tessel_test::MisbehavingServer;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const char* const NO_LOGIN = "ERROR Login device fail, please check network or device is OK";

Behaviour likeAnArray(const ReceivedRequest& request)
{
    if (request.method() == "POST" && request.target() == "/deviceManager/rest/xxxx/sessions") {
        return Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})",
                                  "Set-Cookie: session=S1; path=/\r\n");
    }
    return Behaviour::success(R"({"ID":"7","NAME":"db","CAPACITY":"8","SECTORSIZE":"512"})");
}

bool login(Sdk& sdk, const MisbehavingServer& server)
{
    return sdk.array().loginDevice("127.0.0.1", server.port(), "admin", "secret", USERTYPE_LOCAL);
}

struct Fault
{
    const char* name;
    Behaviour behaviour;
};

std::ostream& operator<<(std::ostream& out, const Fault& fault)
{
    return out << fault.name;
}

const Fault FAULTS[] = {
    {"ClosedWithoutAnswer", Behaviour::closeWithoutAnswer()},
    {"ResetWithoutAnswer", Behaviour::resetWithoutAnswer()},
    {"TruncatedBody", Behaviour::truncatedBody()},
    {"NotJson", Behaviour::notJson()},
    {"NoErrorObject", Behaviour::noErrorObject()},
    {"ErrorCodeOfWrongType", Behaviour::answer(R"({"data":{},"error":{"code":[],"description":""}})")},
    {"DataOfWrongType", Behaviour::answer(R"({"data":"text","error":{"code":0,"description":""}})")},
    {"RecordThatIsNoObject", Behaviour::answer(R"({"data":["text"],"error":{"code":0,"description":""}})")},
    {"FieldOfWrongType", Behaviour::success(R"({"ID":"7","NAME":{"a":1},"deviceid":[1],"iBaseToken":"t"})")},
    {"DuplicateKeys", Behaviour::answer(R"({"error":{"code":0},"error":{"code":0}})")},
    {"TrailingBytes", Behaviour::answer(R"({"error":{"code":0,"description":""}} x)")},
    {"NestedHundredThousandDeep", Behaviour::nested(100000)},
    {"EndlessHeaders", Behaviour::endlessHeaders()},
    {"EndlessHeaderLine", Behaviour::endlessHeaderLine()},
    {"EndlessBody", Behaviour::endlessBody()},
    {"Redirect", Behaviour::redirect("https://127.0.0.1:1/elsewhere")},
};

class Faults : public testing::TestWithParam<Fault>
{
protected:
    Faults()
    {
        trust(TestCertificates::instance().caFile());
        server.setHandler(likeAnArray);
    }

    MisbehavingServer server;
    Sdk sdk;
};

} // namespace

TEST_P(Faults, MakeALoginFailWithItsLineAndRecordAndTheNextOneWork)
{
    const LogMark mark;
    server.enqueue(GetParam().behaviour);
    EXPECT_FALSE(login(sdk, server));
    EXPECT_THAT(mark.run(), Contains(NO_LOGIN));
    ASSERT_THAT(mark.records(), ElementsAre(StartsWith("loginDevice ")));
    EXPECT_NE(mark.records()[0], "loginDevice 0");
    EXPECT_TRUE(login(sdk, server));
}

TEST_P(Faults, MakeAReadThrowWithItsLineAndRecordAndTheNextOneWork)
{
    ASSERT_TRUE(login(sdk, server));
    const LogMark mark;
    for (int i = 0; i < 2; ++i) { // a read on a reused connection that dies is tried once more
        server.enqueue(GetParam().behaviour);
    }
    EXPECT_EQ(thrownBy([&] { sdk.luns().getLun("7"); }), "Exception:url error or internet error getLun");
    EXPECT_THAT(mark.run(), Contains("ERROR url error or internet error getLun"));
    ASSERT_THAT(mark.records(), ElementsAre(StartsWith("getLun ")));
    EXPECT_NE(mark.records()[0], "getLun 0");

    server.closeConnections();
    MisbehavingServer fresh;
    fresh.setHandler(likeAnArray);
    ASSERT_TRUE(login(sdk, fresh));
    EXPECT_EQ(sdk.luns().getLun("7").NAME, "db");
}

TEST_P(Faults, AreOneLineOfTheRestLibrarysOwnAheadOfTheOperations)
{
    ASSERT_TRUE(login(sdk, server));
    const size_t before = logLines("Tessel_run_").size();
    for (int i = 0; i < 2; ++i) {
        server.enqueue(GetParam().behaviour);
    }
    thrownBy([&] { sdk.luns().getLun("7"); });
    const std::vector<std::string> all = logLines("Tessel_run_");
    const std::vector<std::string> lines(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
    const bool isSent = std::string(GetParam().name) != "FieldOfWrongType" &&
                        std::string(GetParam().name) != "RecordThatIsNoObject"; // the SDK finds these
    std::vector<testing::Matcher<std::string>> expected = {
        HasSubstr("enter getLun"), HasSubstr("ERROR Ovra-Tessel-API-linux-Cpp url error")};
    if (isSent) {
        expected.insert(expected.begin() + 1,
                        StartsWith("WARN Ovra-Rest-API no answer from " + server.url() + ": "));
    }
    EXPECT_THAT(lines, testing::ElementsAreArray(expected));
    EXPECT_EQ(ovra::tessel::lastFailure().transport.empty(), !isSent);
    EXPECT_TRUE(ovra::tessel::lastFailure().mayBeDone) << "it was sent";
}

TEST_P(Faults, NeverMakeACreateArriveTwice)
{
    ASSERT_TRUE(login(sdk, server));
    server.enqueue(GetParam().behaviour);
    LunMO lun;
    lun.NAME = "db";
    lun.PARENTID = "0";
    lun.CAPACITY = 1024 * 1024;
    thrownBy([&] { sdk.luns().createLun(lun); });
    size_t creates = 0;
    for (const ReceivedRequest& request : server.requests()) {
        creates += request.target() == "/deviceManager/rest/D1/lun" ? 1 : 0;
    }
    EXPECT_EQ(creates, 1u);
}

INSTANTIATE_TEST_SUITE_P(Server, Faults, testing::ValuesIn(FAULTS),
                         [](const auto& fault) { return fault.param.name; });

TEST(TimeOut, EndsARequestThatIsNeverAnswered)
{
    trust(TestCertificates::instance().caFile(), 20, 1);
    MisbehavingServer server;
    server.setHandler(likeAnArray);
    Sdk sdk;
    ASSERT_TRUE(login(sdk, server));
    server.enqueue(Behaviour::neverAnswer());
    const LogMark mark;
    EXPECT_EQ(thrownBy([&] { sdk.luns().getLun("7"); }), "Exception:url error or internet error getLun");
    EXPECT_THAT(mark.records(), ElementsAre("getLun 28"));
    EXPECT_EQ(sdk.luns().getLun("7").ID, "7");
}

TEST(TimeOut, EndsALoginAtAServerThatAcceptsAndKeepsSilent)
{
    trust(TestCertificates::instance().caFile(), 1, 1);
    MisbehavingServer::Options options;
    options.silentOnConnect = true;
    MisbehavingServer server(options);
    Sdk sdk;
    EXPECT_FALSE(login(sdk, server));
}

TEST(Connecting, FailsAtAPortWhereNobodyListens)
{
    trust(TestCertificates::instance().caFile());
    unsigned int port = 0;
    {
        MisbehavingServer server;
        port = server.port();
    }
    Sdk sdk;
    const LogMark mark;
    EXPECT_FALSE(sdk.array().loginDevice("127.0.0.1", port, "admin", "secret", USERTYPE_LOCAL));
    EXPECT_THAT(mark.run(), Contains(NO_LOGIN));
    EXPECT_THAT(mark.records(), ElementsAre("loginDevice 7"));
}

TEST(Connecting, FailsAtAServerThatSpeaksPlainHttp)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer::Options options;
    options.plainHttp = true;
    MisbehavingServer server(options);
    Sdk sdk;
    EXPECT_FALSE(login(sdk, server));
    EXPECT_EQ(server.requestCount(), 0u);
}

class Untrusted : public testing::TestWithParam<Certificate>
{
};

TEST_P(Untrusted, CertificateIsRefusedBeforeThePasswordIsSent)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer::Options options;
    options.certificate = GetParam();
    MisbehavingServer server(options);
    Sdk sdk;
    const LogMark mark;
    EXPECT_FALSE(login(sdk, server));
    EXPECT_EQ(server.requestCount(), 0u);
    EXPECT_THAT(mark.run(), Contains(NO_LOGIN));
}

INSTANTIATE_TEST_SUITE_P(Certificates, Untrusted,
                         testing::Values(Certificate::Expired, Certificate::WrongHost, Certificate::OtherCa));

TEST(IdleConnection, ThatTheServerClosedIsReplacedForAPostToo)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer server;
    server.setHandler(likeAnArray);
    Sdk sdk;
    ASSERT_TRUE(login(sdk, server));
    server.closeConnections();
    LunGroupMO group;
    group.NAME = "g";
    EXPECT_EQ(sdk.lunGroups().createLunGroup(group).ID, "7");
}

/** The log library at level debug, with a directory of its own, before the SDK starts it with its own. */
class LogsAtLevelDebug : public testing::Test
{
protected:
    LogsAtLevelDebug()
    {
        const std::string iniFile = m_folder.write("Tessel_API.ini", "[run_log]\nlevel = debug\n");
        EXPECT_EQ(LogInit(TAG, iniFile.c_str(), nullptr, m_folder.path().c_str()), 0);
        EXPECT_EQ(Log_Directory(), m_folder.path());
        Log_Run_Debug(TAG, "debug lines are kept");
    }
    ~LogsAtLevelDebug() override { LogFini(TAG); }

    /** All that stands in the file of today, or in those of both days at midnight. */
    std::string text(const std::string& filePrefix) const
    {
        std::ostringstream all;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path())) {
            if (entry.path().filename().string().compare(0, filePrefix.size(), filePrefix) == 0) {
                all << std::ifstream(entry.path()).rdbuf();
            }
        }
        return all.str();
    }

private:
    static constexpr const char* TAG = "test";
    const tessel_test::Folder m_folder;
};

TEST_F(LogsAtLevelDebug, HoldNeitherPasswordNorTokenNorCookieAfterFailures)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer server;
    server.setHandler([](const ReceivedRequest& request) {
        if (request.target() == "/deviceManager/rest/xxxx/sessions") {
            return Behaviour::success(R"({"deviceid":"D1","iBaseToken":"top-token"})",
                                      "Set-Cookie: session=top-cookie; path=/\r\n");
        }
        return request.method() == "PUT" ? Behaviour::notJson() : Behaviour::error(5, "denied");
    });
    Sdk sdk;
    ASSERT_TRUE(sdk.array().loginDevice("127.0.0.1", server.port(), "admin", "top-secret", USERTYPE_LOCAL));
    thrownBy([&] { sdk.luns().getLun("7"); });
    IscsiInitiatorMO initiator;
    initiator.ID = "iqn.2026-11.test:host";
    initiator.USECHAP = true;
    initiator.NORMALVERMODE = "2";
    initiator.CHAPNAME = initiator.CHAPNAMEINITATORVERTARGET = "chap";
    initiator.CHAPPASSWORD = initiator.CHAPPASSWORDINITATORVERTARGET = "top-chap";
    initiator.CHAPOLDPASSWORD = initiator.CHAPOLDPASSWORDINITATORVERTARGET = "top-old-chap";
    thrownBy([&] { sdk.initiators().createIscsiInitiator(initiator); });
    thrownBy([&] { sdk.initiators().modifyIscsiInitiator(initiator); });
    EXPECT_FALSE(sdk.array().keepAlive());
    EXPECT_FALSE(sdk.array().logoutDevice());
    EXPECT_TRUE(
        sdk.array().useConnection("127.0.0.1", server.port(), "D1", "top-token", "session=top-cookie"));
    thrownBy([&] { sdk.luns().getLun("7"); });
    server.setHandler([](const ReceivedRequest&) { return Behaviour::closeWithoutAnswer(); });
    EXPECT_FALSE(sdk.array().loginDevice("127.0.0.1", server.port(), "admin", "top-secret", USERTYPE_LOCAL));

    const std::string run = text("Tessel_run_");
    EXPECT_THAT(run,
                AllOf(HasSubstr("debug lines are kept"), HasSubstr("Login device OK"), HasSubstr("denied"),
                      HasSubstr("createIscsiInitiator"), HasSubstr("modifyIscsiInitiator"),
                      HasSubstr("Use existed connection successfully!"),
                      HasSubstr("Login device fail, please check network")));
    const std::string records = text("Tessel_interface_");
    EXPECT_THAT(records, AllOf(HasSubstr("\"loginDevice\""), HasSubstr("\"getLun\""),
                               HasSubstr("\"logoutDevice\""), HasSubstr("\"createIscsiInitiator\"")));
    EXPECT_THAT(run + records, testing::Not(HasSubstr("top-")));
}

TEST(Session, OfOneProgramWithLoginAHundredReadsAndLogoutIsOneTlsHandshake)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer server;
    server.setHandler(likeAnArray);
    Sdk sdk;
    ASSERT_TRUE(login(sdk, server));
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(sdk.luns().getLun("7").ID, "7");
    }
    EXPECT_TRUE(sdk.array().logoutDevice());
    EXPECT_EQ(server.handshakes(), 1u);
    EXPECT_EQ(server.requestCount(), 102u);
}

TEST(Wire, CarriesTokenAndTrimmedCookieAndNoCredentialsInTheTarget)
{
    trust(TestCertificates::instance().caFile());
    MisbehavingServer server;
    server.setHandler(likeAnArray);
    Sdk sdk;
    ASSERT_TRUE(login(sdk, server));
    sdk.luns().getLun("a b/../?x=1&y#z%41+");
    const ReceivedRequest request = server.requests().back();
    EXPECT_EQ(request.target(), "/deviceManager/rest/D1/lun/a%20b%2F..%2F%3Fx=1%26y%23z%2541%2B");
    EXPECT_EQ(request.header("iBaseToken"), "T1");
    EXPECT_EQ(request.header("Cookie"), "session=S1");
    EXPECT_EQ(request.header("Content-Type"), "application/json");
}

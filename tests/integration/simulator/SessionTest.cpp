#include "ArrayTest.h"
#include "Codes.h"

using tessel_test::ArraySim;
using testing::HasSubstr;

namespace {

class SimulatorSession : public ArrayTest
{
};

TEST_F(SimulatorSession, LoginAnswersDeviceTokenAndCookie)
{
    const Reply reply = client.login();
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.data()["deviceid"].asString(), array.deviceId());
    EXPECT_EQ(reply.data()["username"].asString(), "admin");
    EXPECT_FALSE(reply.data()["iBaseToken"].asString().empty());
    EXPECT_THAT(reply.headers.find("Set-Cookie")->second,
                testing::MatchesRegex("session=[0-9a-f]+; path=/; Secure; HttpOnly"));
    EXPECT_EQ(reply.headers.find("Content-Type")->second, "application/json");
}

TEST_F(SimulatorSession, WrongPasswordOrUserIsRefusedWithADescription)
{
    ArrayClient stranger(array);
    for (const auto& reply : {stranger.login("admin", "guess"), stranger.login("nobody", array.password())}) {
        EXPECT_EQ(reply.code(), code::LOGIN_REFUSED);
        EXPECT_FALSE(reply.description().empty());
        EXPECT_TRUE(reply.data().isNull());
        EXPECT_EQ(reply.headers.count("Set-Cookie"), 0U);
    }
}

TEST_F(SimulatorSession, LoginBodyIsCheckedStrictly)
{
    const auto login = [&](const std::string& body) {
        return client.raw("POST", "/deviceManager/rest/xxxx/sessions", body).code();
    };
    EXPECT_EQ(login(R"({"username":"admin","password":"x"})"), code::MEMBER_MISSING);
    EXPECT_EQ(login(R"({"username":"admin","password":"x","scope":"0"})"), code::MEMBER_INVALID);
    EXPECT_EQ(login(R"({"username":"admin","password":7,"scope":0})"), code::MEMBER_INVALID);
    EXPECT_EQ(login(R"({"username":"admin","password":"x","scope":0,"more":1})"), code::MEMBER_UNKNOWN);
    EXPECT_EQ(login("username=admin"), code::BODY_MALFORMED);
}

TEST_F(SimulatorSession, DeviceTokenAndCookieMustAllBelongToTheSession)
{
    const auto refused = [&] {
        const Reply reply = client.get("/server/logininfo");
        EXPECT_EQ(reply.status, 401);
        EXPECT_EQ(reply.code(), code::SESSION_INVALID);
        EXPECT_FALSE(reply.description().empty());
        return reply.code() == code::SESSION_INVALID;
    };
    const Json::Value info = client.get("/server/logininfo").data();
    EXPECT_EQ(info["deviceid"].asString(), array.deviceId());
    EXPECT_EQ(info["username"], "admin");
    for (std::string* part : {&client.deviceId, &client.token, &client.cookie}) {
        const std::string good = *part;
        part->back() = part->back() == '0' ? '1' : '0';
        EXPECT_TRUE(refused());
        *part = "";
        EXPECT_TRUE(refused() || part == &client.deviceId);
        *part = good;
    }
    ArrayClient other(array);
    other.login();
    client.cookie = other.cookie;
    EXPECT_TRUE(refused());
}

TEST_F(SimulatorSession, TheSessionCookieIsFoundAmongOthers)
{
    client.cookie = "theme=dark; " + client.cookie + "; lang=en";
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
}

TEST_F(SimulatorSession, LogoutEndsTheSession)
{
    EXPECT_EQ(client.del("/sessions").code(), 0);
    EXPECT_EQ(client.get("/lun").code(), code::SESSION_INVALID);
    EXPECT_EQ(client.del("/sessions").code(), code::SESSION_INVALID);
    EXPECT_EQ(array.counters()["sessions"].asUInt(), 0U);
}

TEST_F(SimulatorSession, IdleSessionsExpireAndKeepAliveRefreshesThem)
{
    array.advanceSessions(1199);
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    array.advanceSessions(1199);
    EXPECT_EQ(client.get("/server/logininfo").code(), 0);
    array.advanceSessions(1201);
    EXPECT_EQ(client.get("/server/logininfo").code(), code::SESSION_INVALID);
}

TEST(SimulatorSessionLimit, LoginsAboveTheLimitAreRefusedUntilOneEnds)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--session-limit", "2"};
    const ArraySim array(options);
    ArrayClient first(array);
    ArrayClient second(array);
    ArrayClient third(array);
    EXPECT_EQ(first.login().code(), 0);
    EXPECT_EQ(second.login().code(), 0);
    const Reply refused = third.login();
    EXPECT_EQ(refused.code(), code::SESSION_LIMIT);
    EXPECT_THAT(refused.description(), HasSubstr("2 sessions"));
    EXPECT_EQ(first.del("/sessions").code(), 0);
    EXPECT_EQ(third.login().code(), 0);
}

TEST(SimulatorSessionLimit, ExpiredSessionsMakeRoomForNewOnes)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--session-limit", "1", "--session-timeout", "60"};
    const ArraySim array(options);
    ArrayClient first(array);
    ArrayClient second(array);
    EXPECT_EQ(first.login().code(), 0);
    EXPECT_EQ(second.login().code(), code::SESSION_LIMIT);
    array.advanceSessions(61);
    EXPECT_EQ(second.login().code(), 0);
    EXPECT_EQ(first.get("/lun").code(), code::SESSION_INVALID);
}

TEST_F(SimulatorSession, SessionsHaveNoOtherMethods)
{
    EXPECT_EQ(client.get("/sessions").code(), code::METHOD_UNSUPPORTED);
    EXPECT_EQ(client.raw("GET", "/deviceManager/rest", "").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.raw("GET", "/deviceManager/rest/x", "").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.raw("GET", "/", "").code(), code::RESOURCE_UNKNOWN);
    EXPECT_EQ(client.request("PATCH", "/lun").code(), code::METHOD_UNSUPPORTED);
}

} // namespace

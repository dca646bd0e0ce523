// Logging in: what is checked, sent, read, registered, said and recorded.

#include "unit/session/SessionTest.h"

#include "storage/LunHandlerImpl.h"

using namespace ovra::tessel;

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

TEST_F(Session, LoginSendsUserAndScopeRegistersTheSessionAndSaysSo)
{
    platform.reply(loggedIn());
    EXPECT_TRUE(login());
    EXPECT_THAT(platform.journal(), ElementsAre("info: Login device start...", post,
                                                "addUser 2102|192.0.2.7|8088|T0K| session=abc|true",
                                                "info: Login device OK", "record loginDevice 0"));
    const SentRequest request = platform.requests().front();
    EXPECT_EQ(request.server, "https://192.0.2.7:8088");
    EXPECT_FALSE(request.onSession);
    EXPECT_TRUE(request.flag);
    EXPECT_THAT(request.headers, IsEmpty());
}

TEST_F(Session, LoginRefusesEmptyTextsThenAWrongAddressThenAWrongPort)
{
    platform.ipValid = false;
    EXPECT_FALSE(login(0, ""));
    expectRefusedLogin("Invalid Parameter!");
    EXPECT_FALSE(login(8088, "192.0.2.7", ""));
    expectRefusedLogin("Invalid Parameter!");
    EXPECT_FALSE(login(8088, "192.0.2.7", "admin", ""));
    expectRefusedLogin("Invalid Parameter!");
    platform.ipValid = false;
    EXPECT_FALSE(login(0, "x"));
    expectRefusedLogin("Invalid ip address!");
    EXPECT_FALSE(login(0));
    expectRefusedLogin("Invalid port!");
    EXPECT_FALSE(login(65536));
    expectRefusedLogin("Invalid port!");
}

TEST_F(Session, LoginAcceptsThePorts1And65535)
{
    for (const unsigned int port : {1u, 65535u}) {
        platform.reply(loggedIn());
        EXPECT_TRUE(login(port));
        EXPECT_EQ(platform.requests().back().server, "https://192.0.2.7:" + std::to_string(port));
    }
}

TEST_F(Session, LoginWithoutAnAnswerFailsWithTheTransportCode)
{
    platform.reply(Reply::noAnswer(60));
    EXPECT_FALSE(login());
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Login device start...", post,
                            "error: Login device fail, please check network or device is OK",
                            "record! loginDevice 60"));
}

TEST_F(Session, LoginRefusedByTheArrayFailsWithItsCodeAndDescription)
{
    platform.reply(Reply::error(1077949061, "The user name or password is incorrect."));
    EXPECT_FALSE(login());
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Login device start...", post,
                            "error: Login device fail,err msg:The user name or password is incorrect.",
                            "record! loginDevice 1077949061"));
}

TEST_F(Session, ADescriptionIsNoFormat)
{
    platform.reply(Reply::error(3, "100%s %n %d"));
    EXPECT_FALSE(login());
    EXPECT_THAT(platform.lines("error"), ElementsAre("error: Login device fail,err msg:100%s %n %d"));
}

TEST_F(Session, LoginTakesTheCookieOfTheFirstCookieLineUpToItsSemicolon)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"Date: now", "Set-Cookie:a=1;x", "Set-Cookie: b=2;y"}, "a=1"},
        {{"X-Set-Cookie:  a=1 ; b=2;"}, "  a=1 "},
        {{"Set-Cookie: a=1;"}, " a=1"},
    };
    for (const auto& c : cases) {
        platform.reset();
        platform.reply(loggedIn(c.first));
        EXPECT_TRUE(login());
        EXPECT_THAT(platform.lines("addUser"),
                    ElementsAre("addUser 2102|192.0.2.7|8088|T0K|" + c.second + "|true"));
    }
}

TEST_F(Session, LoginWithoutACookieFailsAndKeepsTheSessionThatWas)
{
    loginAndForget();
    for (const std::vector<std::string>& headers : {std::vector<std::string>(),
                                                    {"Date: now"},
                                                    {"set-cookie: a=1;"},
                                                    {"Set-Cookie: a=1", "Set-Cookie: b=2;"}}) {
        platform.reset();
        platform.reply(loggedIn(headers, R"({"deviceid":"other","iBaseToken":"other"})"));
        EXPECT_FALSE(login(9999));
        EXPECT_THAT(platform.journal(), ElementsAre("info: Login device start...", post,
                                                    "error: Get cookie Err", "record! loginDevice 1"));
    }
    manager.keepAlive();
    EXPECT_EQ(platform.requests().back().path, "/deviceManager/rest/2102/server/logininfo");
    EXPECT_EQ(platform.requests().back().server, "https://192.0.2.7:8088");
}

TEST_F(Session, LoginWithoutARecordOrACookieMissesTheCookie)
{
    platform.reply(Reply::ok());
    EXPECT_FALSE(login());
    EXPECT_THAT(platform.lines("error"), ElementsAre("error: Get cookie Err"));
}

TEST_F(Session, LoginWhoseAnswerHasNoSessionInItSaysSo)
{
    for (const char* const record :
         {"{}", R"({"deviceid":"2102"})", R"({"iBaseToken":"T"})", R"({"deviceid":".","iBaseToken":"T"})",
          R"({"deviceid":"..","iBaseToken":"T"})"}) {
        platform.reset();
        platform.reply(loggedIn({"Set-Cookie: a=1;"}, record));
        EXPECT_FALSE(login()) << record;
        EXPECT_THAT(platform.journal(),
                    ElementsAre("info: Login device start...", post,
                                "error: Login device fail,err msg:the answer holds no device ID or no token",
                                "record! loginDevice 10003"))
            << record;
    }
}

TEST_F(Session, LoginWhoseAnswerCannotBeReadFailsLikeNoAnswer)
{
    for (const char* const record :
         {R"({"deviceid":["x"],"iBaseToken":"T"})", R"({"deviceid":"2102","iBaseToken":{}})"}) {
        platform.reset();
        platform.reply(loggedIn({"Set-Cookie: a=1;"}, record));
        EXPECT_FALSE(login()) << record;
        EXPECT_THAT(platform.journal(),
                    ElementsAre("info: Login device start...", post,
                                "error: Login device fail, please check network or device is OK",
                                "record! loginDevice 10003"))
            << record;
    }
    platform.reset();
    platform.reply(Reply::list(R"(["text"])"));
    EXPECT_FALSE(login());
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! loginDevice 10003"));
}

TEST_F(Session, ThePasswordReachesNoLogLineAndNoRecord)
{
    for (const Reply& reply : {loggedIn(), Reply::noAnswer(), Reply::error(1), loggedIn({})}) {
        platform.reply(reply);
        login();
    }
    for (const std::string& line : platform.journal()) {
        EXPECT_TRUE(line.compare(0, 4, "POST") == 0 || line.find("sesame") == std::string::npos) << line;
    }
    for (const auto& record : platform.interfaceRecords()) {
        EXPECT_THAT(record, testing::Not(testing::Contains(testing::HasSubstr("sesame"))));
    }
}

// Sessions that the registry refuses.

TEST_F(Session, ALoginThatCannotBeRegisteredIsEndedOnTheArrayAndFails)
{
    platform.acceptUsers = false;
    platform.reply(loggedIn());
    EXPECT_FALSE(login());
    const SentRequest ending = platform.requests().back();
    EXPECT_EQ(ending.text(), "DELETE /deviceManager/rest/2102/sessions");
    EXPECT_EQ(ending.server, "https://192.0.2.7:8088");
    EXPECT_THAT(ending.headers, ElementsAre(testing::Pair(47, "T0K"), testing::Pair(8, " session=abc")));
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! loginDevice 10001"));
    EXPECT_THAT(platform.lines("error: Login device fail,err msg:"), testing::SizeIs(1));
    EXPECT_THAT(platform.lines("info: Login device OK"), IsEmpty());
}

TEST_F(Session, HandlersOfARefusedDeviceManagerFailWithoutARequestUntilItIsAccepted)
{
    platform.acceptUsers = false;
    EXPECT_FALSE(manager.useConnection("192.0.2.7", 8088, "2102", "T", "C"));
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! useConnection 10001"));
    auto& luns = static_cast<CLunHandlerImpl&>(*manager.getHandler(LUN_HANDLER));
    platform.reset();
    EXPECT_EQ(outcomeOf([&] { luns.getLun("7"); }), Outcome::failed(journal::noAnswer("getLun")));
    EXPECT_THAT(platform.journal(),
                ElementsAreArray(journal::broken("getLun", 10001, "error: " + journal::noAnswer("getLun"))));
    EXPECT_TRUE(manager.useConnection("192.0.2.7", 8088, "2102", "T", "C"));
    EXPECT_EQ(outcomeOf([&] { luns.getLun("7"); }), Outcome::returned());
}

TEST_F(Session, ALoginWhoseTokenOrCookieCannotBeSentIsEndedByTheOther)
{
    const auto token = testing::Pair(47, "T0K"), cookie = testing::Pair(8, " session=abc");
    platform.acceptUsers = false;
    platform.reply(loggedIn());
    platform.reply(Reply::noAnswer(10002));
    EXPECT_FALSE(login());
    ASSERT_THAT(platform.requests(), testing::SizeIs(3));
    EXPECT_THAT(platform.requests()[1].headers, ElementsAre(token, cookie));
    EXPECT_THAT(platform.requests()[2].headers, ElementsAre(cookie));

    platform.reset();
    platform.acceptUsers = false;
    platform.reply(loggedIn());
    platform.reply(Reply::noAnswer(10002));
    platform.reply(Reply::noAnswer(10002));
    EXPECT_FALSE(login());
    EXPECT_EQ(platform.requests().back().text(), "DELETE /deviceManager/rest/2102/sessions");
    EXPECT_THAT(platform.requests().back().headers, ElementsAre(token));
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! loginDevice 10001"));
}

TEST_F(Session, ARefusedLoginOrAdoptionLeavesTheSessionInForceUntouched)
{
    loginAndForget();
    auto& luns = static_cast<CLunHandlerImpl&>(*manager.getHandler(LUN_HANDLER));
    platform.acceptUsers = false;
    EXPECT_FALSE(manager.useConnection("192.0.2.9", 9, "other", "other", "other"));
    EXPECT_EQ(outcomeOf([&] { luns.getLun("7"); }), Outcome::returned());
    platform.reply(loggedIn({"Set-Cookie: a=1;"}, R"({"deviceid":"other","iBaseToken":"other"})"));
    EXPECT_FALSE(login(9));
    EXPECT_EQ(outcomeOf([&] { luns.getLun("7"); }), Outcome::returned());
    EXPECT_TRUE(manager.keepAlive());
    EXPECT_EQ(platform.requests().back().server, "https://192.0.2.7:8088");
    EXPECT_EQ(platform.requests().back().path, "/deviceManager/rest/2102/server/logininfo");

    // Once it is over, a refusal leaves nothing that could be sent on.
    EXPECT_TRUE(manager.logoutDevice());
    EXPECT_FALSE(manager.useConnection("192.0.2.9", 9, "other", "other", "other"));
    EXPECT_EQ(outcomeOf([&] { luns.getLun("7"); }), Outcome::failed(journal::noAnswer("getLun")));
}

} // namespace

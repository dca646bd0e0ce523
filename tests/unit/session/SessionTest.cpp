// Logging out, keeping alive, and adopting a session that was opened elsewhere.

#include "unit/session/SessionTest.h"

namespace {

using journal::join;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// Logging out and keeping alive.

TEST_F(Session, LogoutSendsTokenAndCookieForgetsTheSessionAndSaysSo)
{
    loginAndForget();
    EXPECT_TRUE(manager.logoutDevice());
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Logout device start...", "DELETE /deviceManager/rest/2102/sessions",
                            "removeUser", "info: Logout device OK", "record logoutDevice 0"));
    const SentRequest request = platform.requests().front();
    EXPECT_EQ(request.server, "https://192.0.2.7:8088");
    EXPECT_THAT(request.headers, ElementsAre(testing::Pair(47, "T0K"), testing::Pair(8, " session=abc")));
    EXPECT_FALSE(request.flag);
    EXPECT_FALSE(request.onSession);
}

TEST_F(Session, LogoutThatFailsKeepsTheSession)
{
    loginAndForget();
    platform.reply(Reply::noAnswer(28));
    EXPECT_FALSE(manager.logoutDevice());
    platform.reply(Reply::error(1077949069, "unauthorized"));
    EXPECT_FALSE(manager.logoutDevice());
    const std::string request = "DELETE /deviceManager/rest/2102/sessions";
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Logout device start...", request, "error: Logout device fail",
                            "record! logoutDevice 28", "info: Logout device start...", request,
                            "error: Logout device fail err msg:unauthorized",
                            "record! logoutDevice 1077949069"));
}

TEST_F(Session, KeepsItsValuesAfterALogout)
{
    loginAndForget();
    manager.logoutDevice();
    manager.logoutDevice();
    EXPECT_EQ(platform.requests()[0].text(), platform.requests()[1].text());
    EXPECT_EQ(platform.requests()[0].headers, platform.requests()[1].headers);
}

TEST_F(Session, KeepAliveAsksForTheLoginInformationAndWritesNoRecord)
{
    loginAndForget();
    EXPECT_TRUE(manager.keepAlive());
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Keep alive start...", "GET /deviceManager/rest/2102/server/logininfo"));
    const SentRequest request = platform.requests().front();
    EXPECT_EQ(request.server, "https://192.0.2.7:8088");
    EXPECT_THAT(request.headers, ElementsAre(testing::Pair(47, "T0K"), testing::Pair(8, " session=abc")));
    EXPECT_FALSE(request.flag);
    EXPECT_FALSE(request.onSession);
}

TEST_F(Session, KeepAliveThatFailsSaysWhyAndWritesNoRecord)
{
    loginAndForget();
    platform.reply(Reply::noAnswer(28));
    EXPECT_FALSE(manager.keepAlive());
    platform.reply(Reply::error(1077949069, "unauthorized"));
    EXPECT_FALSE(manager.keepAlive());
    EXPECT_THAT(platform.lines("error"),
                ElementsAre("error: Keep alive fail!", "error: Keep alive fail err msg:unauthorized"));
    EXPECT_THAT(platform.lines("record"), IsEmpty());
}

TEST_F(Session, KeepAliveReadsNothingFromTheAnswer)
{
    platform.reply(Reply::list(R"(["text"])"));
    EXPECT_TRUE(manager.keepAlive());
}

// Adopting a session.

TEST_F(Session, AnAdoptedOneIsRegisteredWithoutARequestAndItsPortIsNotChecked)
{
    EXPECT_TRUE(manager.useConnection("192.0.2.7", 70000, "2102", "T", "C"));
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Use existed connection start...", "addUser 2102|192.0.2.7|70000|T|C|false",
                            "info: Use existed connection successfully!", "record useConnection 0"));
    platform.reset();
    manager.logoutDevice();
    EXPECT_EQ(platform.requests().front().server, "https://192.0.2.7:70000");
    EXPECT_THAT(platform.requests().front().headers,
                ElementsAre(testing::Pair(47, "T"), testing::Pair(8, "C")));
}

TEST_F(Session, AdoptingRefusesEmptyTextsThenAWrongAddress)
{
    const auto refused = [](const std::string& line) {
        return Lines{"info: Use existed connection start...", "error: " + line, "record! useConnection 1"};
    };
    platform.ipValid = false;
    EXPECT_FALSE(manager.useConnection("", 1, "2102", "T", "C"));
    EXPECT_FALSE(manager.useConnection("192.0.2.7", 1, "", "T", "C"));
    EXPECT_FALSE(manager.useConnection("192.0.2.7", 1, "2102", "", "C"));
    EXPECT_FALSE(manager.useConnection("192.0.2.7", 1, "2102", "T", ""));
    EXPECT_FALSE(manager.useConnection("x", 1, "2102", "T", "C"));
    const Lines empty = refused("Invalid Parameter!");
    EXPECT_THAT(platform.journal(),
                ElementsAreArray(join(empty, empty, empty, empty, refused("Invalid ip address!"))));
}

TEST_F(Session, ADeviceIdIsDataInThePathAndNeverAnotherPath)
{
    for (const char* const deviceId : {".", ".."}) {
        EXPECT_FALSE(manager.useConnection("192.0.2.7", 1, deviceId, "T", "C"));
    }
    EXPECT_THAT(platform.lines("error"),
                ElementsAre("error: Invalid Parameter!", "error: Invalid Parameter!"));
    EXPECT_TRUE(manager.useConnection("192.0.2.7", 1, "../a?b", "T", "C"));
    EXPECT_TRUE(manager.keepAlive());
    EXPECT_EQ(platform.requests().back().path, "/deviceManager/rest/..%2Fa%3Fb/server/logininfo");
    EXPECT_TRUE(manager.logoutDevice());
    EXPECT_EQ(platform.requests().back().path, "/deviceManager/rest/..%2Fa%3Fb/sessions");
}

} // namespace

#ifndef UNIT_SESSION_SESSIONTEST_H
#define UNIT_SESSION_SESSIONTEST_H

#include "session/DeviceManagerImpl.h"
#include "support/RecordingPlatform.h"
#include "unit/handlers/Journal.h"
#include "unit/handlers/Outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/** The session operations of one device manager. */
class Session : public testing::Test
{
protected:
    Session() { platform.reset(); }
    void TearDown() override { expectWellFormedLogCalls(platform); }

    static Reply loggedIn(const std::vector<std::string>& headers = {"Set-Cookie: session=abc; Path=/"},
                          const std::string& record = R"({"deviceid":"2102","iBaseToken":"T0K"})")
    {
        Reply reply = Reply::object(record);
        reply.headers = headers;
        return reply;
    }

    bool login(unsigned int port = 8088, const std::string& ip = "192.0.2.7",
               const std::string& user = "admin", const std::string& password = "open sesame")
    {
        return manager.loginDevice(ip, port, user, password, static_cast<USERTYPE>(5));
    }

    /** Logs in, and forgets how. */
    void loginAndForget()
    {
        platform.reply(loggedIn());
        ASSERT_TRUE(login());
        const bool accept = platform.acceptUsers;
        platform.reset();
        platform.acceptUsers = accept;
    }

    void expectRefusedLogin(const std::string& line)
    {
        EXPECT_THAT(platform.journal(), testing::ElementsAre("info: Login device start...", "error: " + line,
                                                             "record! loginDevice 1"));
        platform.reset();
    }

    RecordingPlatform& platform = RecordingPlatform::get();
    CDeviceManagerImpl manager;
    const std::string post = "POST /deviceManager/rest/xxxx/sessions username=string:admin"
                             " password=string:open sesame scope=int:5";
};

#endif

// What a device manager was given to work with: limits of its calls, and credentials for another login.

#include "unit/session/SessionTest.h"

#include <tessel/Calls.h>
#include <tessel/Failure.h>
#include <tessel/Lun.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace ovra::tessel;
using std::chrono::milliseconds;
using testing::ElementsAre;

namespace {

constexpr int REFUSED = 1077949069;

std::atomic<bool> nothingIsOpened{false};

class OptionsOfADeviceManager : public Session
{
protected:
    std::string readLun()
    {
        return outcomeOf([&] { static_cast<CLunHandler*>(manager.getHandler(LUN_HANDLER))->getLun("7"); })
            .what;
    }
    std::vector<std::string> requests() const
    {
        std::vector<std::string> texts;
        for (const SentRequest& request : platform.requests()) {
            const std::string text = request.text();
            texts.push_back(text.substr(0, text.find(" username")));
        }
        return texts;
    }
    void giveCredentials(const std::string& password)
    {
        setCredentials(manager, [password](Credentials& credentials) {
            credentials.userName = "admin";
            credentials.password = password;
            return true;
        });
    }
    static long descriptors()
    {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    }
};

const char* const READ = "GET /lun/7";
const char* const PROBE = "GET /deviceManager/rest/2102/server/logininfo";
const char* const LOGIN = "POST /deviceManager/rest/xxxx/sessions";

} // namespace

// A limit of descriptors would also hold for the checks of a sanitizer, which opens a pipe to look at an
// object.
extern "C" int eventfd(unsigned count, int flags) noexcept
{
    if (nothingIsOpened) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_eventfd2, count, flags));
}

TEST_F(OptionsOfADeviceManager, KeepACancellationAsLongAsACallMayWaitForIt)
{
    const long before = descriptors();
    setCallLimit(manager, milliseconds(0), Cancellation());
    EXPECT_EQ(descriptors(), before + 1) << "its number may be another file's, else";
    setCallLimit(manager, milliseconds(0));
    EXPECT_EQ(descriptors(), before);
    {
        const CallLimit limit{Cancellation()};
        EXPECT_EQ(descriptors(), before + 1) << "of the calls of a thread";
    }
    EXPECT_EQ(descriptors(), before);
}

TEST(ACancellation, IsRefusedWhereNothingMoreCanBeOpened)
{
    nothingIsOpened = true;
    const std::string refused = outcomeOf([] { const Cancellation cancellation; }).what;
    nothingIsOpened = false;
    EXPECT_EQ(refused, "Exception:this process can open nothing more! Cancellation");
}

TEST_F(OptionsOfADeviceManager, WithoutCredentialsLeaveARefusalAsItIs)
{
    loginAndForget();
    setCallLimit(manager, milliseconds(0));
    platform.reply(Reply::error(REFUSED, "unauthorized"));
    EXPECT_NE(readLun(), "");
    EXPECT_THAT(requests(), ElementsAre(READ));
}

TEST_F(OptionsOfADeviceManager, TryCredentialsAgainThatTheArrayHasNotRefused)
{
    loginAndForget();
    giveCredentials("open sesame");
    const auto readWith = [&](const Reply& login) {
        for (const Reply& reply : {Reply::error(REFUSED, "unauthorized"), Reply::error(REFUSED), login}) {
            platform.reply(reply);
        }
        return readLun();
    };
    EXPECT_NE(readWith(Reply::noAnswer(7)), "");
    EXPECT_EQ(readWith(loggedIn()), "") << "the array was away for a moment";
    EXPECT_THAT(requests(), ElementsAre(READ, PROBE, LOGIN, READ, PROBE, LOGIN, READ));
    EXPECT_NE(readWith(Reply::error(REFUSED, "wrong password")), "");
    platform.reset();
    platform.reply(Reply::error(REFUSED, "unauthorized"));
    EXPECT_NE(readLun(), "");
    EXPECT_THAT(requests(), ElementsAre(READ)) << "tried again it might lock the account";
}

TEST_F(OptionsOfADeviceManager, AskASourceAgainThatHadNoCredentials)
{
    loginAndForget();
    const auto isRefused = [&] {
        platform.reply(Reply::error(REFUSED, "unauthorized"));
        platform.reply(Reply::error(REFUSED));
        return readLun() != "";
    };
    platform.reply(Reply::error(REFUSED, "unauthorized"));
    EXPECT_NE(readLun(), "") << "what failed before is no refusal of credentials";
    setCredentials(manager, [](Credentials&) { return false; });
    EXPECT_TRUE(isRefused());
    setCredentials(manager, [](Credentials&) -> bool { throw 1; });
    EXPECT_TRUE(isRefused());
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: The source of the credentials for another login failed."));
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(platform.lines("warn: ").size(), 2U) << "it may have some by then";
}

TEST_F(OptionsOfADeviceManager, OpenASessionAlsoWhereItsEndIsToldInNoFormOfTheArrays)
{
    loginAndForget();
    giveCredentials("open sesame");
    for (int i = 0; i < 2; ++i) { // the read, and whether the session is there
        platform.reply(Reply::noAnswer(REST_ANSWER_UNREADABLE));
    }
    platform.reply(loggedIn());
    EXPECT_EQ(readLun(), "");
    EXPECT_THAT(requests(), ElementsAre(READ, PROBE, LOGIN, READ));
}

TEST_F(OptionsOfADeviceManager, AskNoSourceThatWasTakenAway)
{
    loginAndForget();
    setCredentials(manager, [](Credentials&) -> bool { throw 1; });
    setCredentials(manager, nullptr);
    platform.reply(Reply::error(REFUSED, "unauthorized"));
    EXPECT_NE(readLun(), "");
    EXPECT_THAT(requests(), ElementsAre(READ));
}

TEST_F(OptionsOfADeviceManager, TryOtherCredentialsWhereTheArrayHasRefusedTheFirst)
{
    loginAndForget();
    const auto readWith = [&](const std::string& password, const Reply& login) {
        giveCredentials(password);
        for (const Reply& reply : {Reply::error(REFUSED, "unauthorized"), Reply::error(REFUSED), login}) {
            platform.reply(reply);
        }
        return readLun();
    };
    EXPECT_NE(readWith("of yesterday", Reply::error(REFUSED, "wrong password")), "");
    EXPECT_EQ(readWith("of today", loggedIn()), "");
}

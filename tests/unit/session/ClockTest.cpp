// When a call looks at the clock: between which of its lines.

#include "unit/handlers/HandlerTest.h"
#include "unit/session/SessionTest.h"

#include <sys/time.h>

namespace {

bool g_noted = false; ///< the clock is looked at by others too

} // namespace

/** gettimeofday, replaced by one that notes in the journal that it was asked. */
extern "C" int gettimeofday(timeval* time, void*) noexcept
{
    if (g_noted) {
        RecordingPlatform::get().note("clock");
    }
    *time = {1700000000, 0};
    return 0;
}

namespace {

using testing::ElementsAre;

class Clock : public Session
{
protected:
    template <class Call>
    Lines journalOf(Call call)
    {
        platform.reset();
        g_noted = true;
        call();
        g_noted = false;
        return platform.journal();
    }
};

TEST_F(Clock, OfAnOperationStartsBehindItsEnterLine)
{
    EXPECT_THAT(journalOf([&] { handlers::lun(manager).getLun("7"); }),
                ElementsAre(journal::enter("getLun"), "clock", "GET /lun/7", "clock", "record getLun 0",
                            journal::leave("getLun")));
}

TEST_F(Clock, OfALoginAndAnAdoptionStartsBehindTheirFirstLine)
{
    EXPECT_THAT(journalOf([&] { login(0); }),
                ElementsAre("info: Login device start...", "clock", "error: Invalid port!", "clock",
                            "record! loginDevice 1"));
    EXPECT_THAT(journalOf([&] { manager.useConnection("", 1, "", "", ""); }),
                ElementsAre("info: Use existed connection start...", "clock", "error: Invalid Parameter!",
                            "clock", "record! useConnection 1"));
}

TEST_F(Clock, OfALogoutStartsAheadOfItsFirstLine)
{
    const Lines journal = journalOf([&] { manager.logoutDevice(); });
    ASSERT_GE(journal.size(), 2u);
    EXPECT_EQ(journal[0], "clock");
    EXPECT_EQ(journal[1], "info: Logout device start...");
}

} // namespace

#include "host/Korvex.h"
#include "host/KxRescanState.h"

#include <gtest/gtest.h>

#include <type_traits>

// Programs that know them by their declarations alone find objects there.
static_assert(std::is_same_v<decltype(g_kxRescanTimeout), std::string>);
static_assert(std::is_same_v<decltype(g_tmpBlockCheckCmd), std::string>);
static_assert(std::is_same_v<decltype(g_scanlunEndCond), std::condition_variable>);
static_assert(std::is_same_v<decltype(g_scanLunMutex), std::mutex>);

TEST(ScanGlobals, HoldTheirTextsWhenTheProgramStarts)
{
    EXPECT_EQ(g_kxRescanTimeout, "1800");
    EXPECT_EQ(g_tmpBlockCheckCmd, "lsscsi | grep tmp-block");
}

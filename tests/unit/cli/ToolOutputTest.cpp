#include "attach/ToolOutput.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>
#include <unistd.h>

namespace {

long descriptors()
{
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

TEST(OutputOfTheHostsTools, becomesNotesInItsOrderAndLeavesNothingOpen)
{
    const long before = descriptors();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    {
        tesselctl::ToolOutput kept;
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            ASSERT_EQ(write(stream, "line\n", 5), 5);
        }
        kept.tell(tesselctl::Printer(false));
        ASSERT_EQ(write(STDOUT_FILENO, "later\n", 6), 6);
    }
    {
        const tesselctl::ToolOutput untold;
        ASSERT_EQ(write(STDERR_FILENO, "lost\n", 5), 5);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tesselctl: line\ntesselctl: line\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "later\n");
    EXPECT_EQ(descriptors(), before);
}

} // namespace

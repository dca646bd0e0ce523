#include "kernel/Failure.h"
#include "network/ArrayAddress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using tesselctl::parseArrayAddress;
using testing::HasSubstr;

std::string read(const std::string& text)
{
    try {
        return parseArrayAddress("--array", text).text();
    } catch (const tesselctl::UsageError& error) {
        return error.what();
    }
}

TEST(Address, isReadInEachFormAndToldInOne)
{
    EXPECT_EQ(read("192.0.2.1"), "192.0.2.1:8088");
    EXPECT_EQ(read("192.0.2.1:443"), "192.0.2.1:443");
    EXPECT_EQ(read("2001:db8::1"), "[2001:db8::1]:8088");
    EXPECT_EQ(read("::1"), "[::1]:8088");
    EXPECT_EQ(read("[2001:db8::1]"), "[2001:db8::1]:8088");
    EXPECT_EQ(read("[2001:db8::1]:1"), "[2001:db8::1]:1");
    EXPECT_EQ(parseArrayAddress("--array", "[::1]:65535").ip, "::1");
}

TEST(Address, thatIsNoneIsRefused)
{
    for (const char* text :
         {"", "array.example.com", "192.0.2", "192.0.2.1.5", "[]", "[", "[::1", "[::1]8088", "[::1]]", "::1]",
          "1:2", ":8088", "2001:db8::1]:8088", "192.0.2.1/24", " 192.0.2.1"}) {
        EXPECT_THAT(read(text), HasSubstr("--array takes an IP address")) << text;
        EXPECT_THAT(read(text), HasSubstr("names are not looked up")) << text;
    }
}

TEST(Address, hasAPortThatThereIs)
{
    for (const char* text :
         {"192.0.2.1:", "192.0.2.1:0", "192.0.2.1:65536", "192.0.2.1:-1", "[::1]:", "[::1]:80 "}) {
        EXPECT_THAT(read(text), HasSubstr("the port of --array takes a decimal number from 1 to 65535"))
            << text;
    }
}

} // namespace

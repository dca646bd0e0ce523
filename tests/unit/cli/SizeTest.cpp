#include "kernel/Failure.h"
#include "text/Numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using tesselctl::humanSize;
using tesselctl::parseNumber;
using tesselctl::parseSize;
using testing::HasSubstr;

constexpr uint64_t KIB = 1024;

std::string refusalOf(const std::string& size)
{
    try {
        return std::to_string(parseSize("--size", size));
    } catch (const tesselctl::UsageError& error) {
        return error.what();
    }
}

TEST(Size, isReadInBothKindsOfUnits)
{
    EXPECT_EQ(parseSize("--size", "1"), 1U);
    EXPECT_EQ(parseSize("--size", "512b"), 512U);
    EXPECT_EQ(parseSize("--size", "1k"), KIB);
    EXPECT_EQ(parseSize("--size", "1KiB"), KIB);
    EXPECT_EQ(parseSize("--size", "1kB"), 1000U);
    EXPECT_EQ(parseSize("--size", "3MB"), 3'000'000U);
    EXPECT_EQ(parseSize("--size", "3M"), 3 * KIB * KIB);
    EXPECT_EQ(parseSize("--size", "10 GiB"), 10 * KIB * KIB * KIB);
    EXPECT_EQ(parseSize("--size", "2t"), 2 * KIB * KIB * KIB * KIB);
    EXPECT_EQ(parseSize("--size", "7PB"), 7'000'000'000'000'000U);
    EXPECT_EQ(parseSize("--size", "15EiB"), 15 * (KIB * KIB * KIB * KIB * KIB * KIB));
}

TEST(Size, mayHaveAFractionThatIsAWholeNumberOfBytes)
{
    EXPECT_EQ(parseSize("--size", "1.5k"), 1536U);
    EXPECT_EQ(parseSize("--size", "0.5TiB"), 512 * KIB * KIB * KIB);
    EXPECT_EQ(parseSize("--size", "2.000b"), 2U);
    EXPECT_EQ(parseSize("--size", "1.001kB"), 1001U);
    EXPECT_THAT(refusalOf("1.0001kB"), HasSubstr("is not a whole number of bytes"));
    EXPECT_THAT(refusalOf("0.5"), HasSubstr("is not a whole number of bytes"));
}

TEST(Size, thatIsNoneIsRefusedWithItsReason)
{
    for (const char* text :
         {"", ".5k", "5.", "1.5.5k", "k", "-1", "+1", "1x", "1kk", "1ki", "1 k ", "1  k", "0x10", " 1"}) {
        EXPECT_THAT(refusalOf(text), HasSubstr("is not a size; write a size such as")) << text;
    }
    EXPECT_THAT(refusalOf("0"), HasSubstr("is nothing"));
    EXPECT_THAT(refusalOf("0.0G"), HasSubstr("is nothing"));
    EXPECT_EQ(refusalOf("0").find("--size: '0'"), 0U);
}

TEST(Size, endsBeforeTheGreatestNumber)
{
    EXPECT_EQ(refusalOf("18446744073709551614"), "18446744073709551614");
    EXPECT_THAT(refusalOf("18446744073709551615"), HasSubstr("is more than 64 bits hold"));
    EXPECT_THAT(refusalOf("16EiB"), HasSubstr("is more than 64 bits hold"));
    EXPECT_THAT(refusalOf("999999999999999999999"), HasSubstr("is more than 64 bits hold"));
    EXPECT_THAT(refusalOf("9999999999999999999999E"), HasSubstr("is more than 64 bits hold"));
    EXPECT_EQ(refusalOf("0000000000000000000001"), "1"); // 22 digits
    EXPECT_THAT(refusalOf("00000000000000000000001"), HasSubstr("has too many digits"));
    EXPECT_THAT(refusalOf("0.1000000000000000000000"), HasSubstr("has too many digits"));
}

TEST(Size, isToldInTwoDecimalsAndSaysWhereThatIsNotAll)
{
    EXPECT_EQ(humanSize(0), "0 B");
    EXPECT_EQ(humanSize(1023), "1023 B");
    EXPECT_EQ(humanSize(1024), "1 KiB");
    EXPECT_EQ(humanSize(1536), "1.5 KiB");
    EXPECT_EQ(humanSize(1280), "1.25 KiB");
    EXPECT_EQ(humanSize(1025), "~1 KiB");
    EXPECT_EQ(humanSize(1024 + 11), "~1.01 KiB");
    EXPECT_EQ(humanSize(10 * KIB * KIB * KIB), "10 GiB");
    EXPECT_EQ(humanSize(KIB * KIB - 1), "~1023.99 KiB");
    EXPECT_EQ(humanSize(UINT64_MAX), "~15.99 EiB");
}

TEST(Number, isDecimalAndWithinItsBounds)
{
    EXPECT_EQ(parseNumber("--most", "0", 0, 5), 0U);
    EXPECT_EQ(parseNumber("--most", "5", 0, 5), 5U);
    EXPECT_EQ(parseNumber("--most", "00000000000000000005", 0, 5), 5U); // 20 digits
    EXPECT_EQ(parseNumber("--most", "18446744073709551615", 0, UINT64_MAX), UINT64_MAX);
    for (const char* text :
         {"", "6", "-1", "+1", "1 ", " 1", "0x1", "1.0", "000000000000000000005", "18446744073709551616"}) {
        EXPECT_THROW(parseNumber("--most", text, 0, 5), tesselctl::UsageError) << text;
    }
    EXPECT_THROW(parseNumber("--port", "0", 1, 65535), tesselctl::UsageError);
    EXPECT_THROW(parseNumber("--id", "18446744073709551616", 0, UINT64_MAX), tesselctl::UsageError);
    try {
        parseNumber("--port", "70000", 1, 65535);
        FAIL();
    } catch (const tesselctl::UsageError& error) {
        EXPECT_STREQ(error.what(), "--port takes a decimal number from 1 to 65535, not '70000'");
        EXPECT_EQ(error.code(), tesselctl::ExitCode::USAGE);
    }
}

} // namespace

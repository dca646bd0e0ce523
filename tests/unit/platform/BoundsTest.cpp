#include <ovra/bounds/bounds.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <string>

namespace {

int vprint(char* dest, size_t destMax, size_t count, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

int vprint(char* dest, size_t destMax, size_t count, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int result = vsnprintf_s(dest, destMax, count, format, args);
    va_end(args);
    return result;
}

TEST(Bounds, MemsetFillsAndRefusesMoreThanThereIs)
{
    char buffer[] = "abcdef";
    EXPECT_EQ(0, memset_s(buffer, 6, 'x', 3));
    EXPECT_STREQ("xxxdef", buffer);
    EXPECT_EQ(ERANGE, memset_s(buffer, 4, 'y', 6));
    EXPECT_STREQ("yyyyef", buffer);
    EXPECT_EQ(EINVAL, memset_s(nullptr, 4, 0, 4));
    EXPECT_EQ(EINVAL, memset_s(buffer, 0, 0, 0));
}

TEST(Bounds, StrcpyCopiesWhatFitsAndLeavesAnEmptyStringOtherwise)
{
    char buffer[5] = "old";
    EXPECT_EQ(0, strcpy_s(buffer, sizeof(buffer), "four"));
    EXPECT_STREQ("four", buffer);
    EXPECT_EQ(ERANGE, strcpy_s(buffer, sizeof(buffer), "fives"));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(0, strcpy_s(buffer, sizeof(buffer), ""));
    buffer[0] = 'x';
    EXPECT_EQ(EINVAL, strcpy_s(buffer, sizeof(buffer), nullptr));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(EINVAL, strcpy_s(nullptr, 5, "x"));
    EXPECT_EQ(EINVAL, strcpy_s(buffer, 0, "x"));
    EXPECT_EQ(EINVAL, strcpy_s(buffer, SIZE_MAX, "x"));
}

TEST(Bounds, OverlappingAreasAreRefused)
{
    char buffer[16] = "abcdef";
    EXPECT_EQ(ERANGE, strcpy_s(buffer, sizeof(buffer), buffer + 2));
    char other[16] = "abcdef";
    EXPECT_EQ(ERANGE, strcpy_s(other + 2, sizeof(other) - 2, other));
    char third[16] = "abc";
    EXPECT_EQ(ERANGE, strcat_s(third, sizeof(third), third));
    char apart[16] = "abc\0def";
    EXPECT_EQ(0, strcpy_s(apart + 8, 8, apart));
    EXPECT_STREQ("abc", apart + 8);
}

TEST(Bounds, AreasThatTouchDoNotOverlap)
{
    char text[] = "abc\0....";
    EXPECT_EQ(0, strcpy_s(text + 4, 4, text));
    EXPECT_STREQ("abc", text + 4);
    char behind[] = "....abc";
    EXPECT_EQ(0, strcpy_s(behind, 4, behind + 4));
    EXPECT_STREQ("abc", behind);
}

TEST(Bounds, StrncpyCopiesAtMostCountCharacters)
{
    char buffer[5];
    EXPECT_EQ(0, strncpy_s(buffer, sizeof(buffer), "abcdefgh", 4));
    EXPECT_STREQ("abcd", buffer);
    EXPECT_EQ(0, strncpy_s(buffer, sizeof(buffer), "ab", 100));
    EXPECT_STREQ("ab", buffer);
    EXPECT_EQ(0, strncpy_s(buffer, sizeof(buffer), "ab", 0));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(ERANGE, strncpy_s(buffer, sizeof(buffer), "abcdefgh", 5));
    EXPECT_STREQ("", buffer);
    const char unterminated[3] = {'x', 'y', 'z'};
    EXPECT_EQ(0, strncpy_s(buffer, sizeof(buffer), unterminated, 3));
    EXPECT_STREQ("xyz", buffer);
    EXPECT_EQ(EINVAL, strncpy_s(nullptr, 5, "x", 1));
    EXPECT_EQ(EINVAL, strncpy_s(buffer, 0, "x", 1));
    EXPECT_STREQ("xyz", buffer);
}

TEST(Bounds, StrcatAppendsWhatFits)
{
    char buffer[6] = "ab";
    EXPECT_EQ(0, strcat_s(buffer, sizeof(buffer), "cde"));
    EXPECT_STREQ("abcde", buffer);
    EXPECT_EQ(0, strcat_s(buffer, sizeof(buffer), ""));
    EXPECT_EQ(ERANGE, strcat_s(buffer, sizeof(buffer), "f"));
    EXPECT_STREQ("", buffer);
    char unterminated[3] = {'x', 'y', 'z'};
    EXPECT_EQ(ERANGE, strcat_s(unterminated, sizeof(unterminated), "a"));
    EXPECT_EQ('\0', unterminated[0]);
    EXPECT_EQ(EINVAL, strcat_s(buffer, sizeof(buffer), nullptr));
}

TEST(Bounds, SprintfPrintsAllOrNothing)
{
    char buffer[5] = "old";
    EXPECT_EQ(4, sprintf_s(buffer, sizeof(buffer), "%04x", 0xabU));
    EXPECT_STREQ("00ab", buffer);
    EXPECT_EQ(-1, sprintf_s(buffer, sizeof(buffer), "%s", "fives"));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(-1, sprintf_s(nullptr, 5, "%s", "x"));
    EXPECT_EQ(-1, sprintf_s(buffer, 0, "%s", "x"));
    buffer[0] = 'x';
    const char* noFormat = nullptr;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    EXPECT_EQ(-1, sprintf_s(buffer, sizeof(buffer), noFormat, 1));
#pragma GCC diagnostic pop
    EXPECT_STREQ("", buffer);
}

TEST(Bounds, SnprintfKeepsTheFirstCountCharactersOfALongerText)
{
    char buffer[8];
    EXPECT_EQ(3, snprintf_s(buffer, sizeof(buffer), 3, "%s", "abc"));
    EXPECT_STREQ("abc", buffer);
    EXPECT_EQ(-1, snprintf_s(buffer, sizeof(buffer), 3, "%s", "abcd"));
    EXPECT_STREQ("abc", buffer);
    EXPECT_EQ(-1, snprintf_s(buffer, sizeof(buffer), 100, "%s", "abcdefghij"));
    EXPECT_STREQ("abcdefg", buffer);
    EXPECT_EQ(-1, snprintf_s(buffer, sizeof(buffer), SIZE_MAX, "%s", "abcdefghij"));
    EXPECT_STREQ("abcdefg", buffer);
    EXPECT_EQ(11, snprintf_s(std::string(12, 'x').data(), 12, 11, "%d", INT32_MIN));
    EXPECT_EQ(-1, snprintf_s(nullptr, 8, 3, "%s", "x"));
    EXPECT_EQ(-1, snprintf_s(buffer, 0, 3, "%s", "x"));
    EXPECT_STREQ("abcdefg", buffer);
}

TEST(Bounds, ALongLogTextIsCutAt512Characters)
{
    char buffer[513 + 1] = {};
    buffer[513] = 'G';
    EXPECT_EQ(512, vprint(buffer, 513, 512, "%s", std::string(512, 'a').c_str()));
    EXPECT_EQ(std::string(512, 'a'), buffer);
    EXPECT_EQ(-1, vprint(buffer, 513, 512, "%s", (std::string(512, 'b') + "cdef").c_str()));
    EXPECT_EQ(std::string(512, 'b'), buffer);
    EXPECT_EQ('G', buffer[513]);
    EXPECT_EQ(-1, vprint(buffer, 513, 512, nullptr));
    EXPECT_STREQ("", buffer);
}

} // namespace

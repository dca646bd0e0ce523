#include <ovra/text/Utf8.h>

#include <gtest/gtest.h>
#include <utility>

namespace ovra {
namespace {

using std::string_view_literals::operator""sv;

TEST(Utf8, CharactersOfEveryLengthAreRead)
{
    for (const auto& [text, code] : {std::pair{"\0"sv, U'\0'},
                                     {"A"sv, U'A'},
                                     {"\x7F"sv, U'\x7F'},
                                     {"\xC2\x80"sv, U'\x80'},
                                     {"\xDF\xBF"sv, U'\x7FF'},
                                     {"\xE0\xA0\x80"sv, U'\x800'},
                                     {"\xED\x9F\xBF"sv, U'\xD7FF'},
                                     {"\xEE\x80\x80"sv, U'\xE000'},
                                     {"\xF0\x90\x80\x80"sv, U'\x10000'},
                                     {"\xF4\x8F\xBF\xBF"sv, U'\x10FFFF'}}) {
        const Utf8Character read = utf8Character(std::string(text) + "behind");
        EXPECT_EQ(text.size(), read.length) << std::hex << code;
        EXPECT_EQ(code, read.code);
    }
}

TEST(Utf8, WhatIsNotWellFormedIsNoCharacter)
{
    for (const std::string_view text :
         {""sv, "\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC2"sv, "\xC2\xC2"sv, "\xE0\x9F\xBF"sv,
          "\xE2\x82"sv, "\xE2\x82\x28"sv, "\xED\xA0\x80"sv, "\xED\xBF\xBF"sv, "\xF0\x8F\xBF\xBF"sv,
          "\xF0\x90\x80"sv, "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xFF"sv}) {
        EXPECT_EQ(0U, utf8Character(text).length) << testing::PrintToString(text);
    }
}

TEST(Utf8, ControlsSeparatorsAndTurnsOfDirectionAreObeyed)
{
    for (const char32_t code : {U'\0', U'\n', U'\x1B', U'\x7F', U'\x80', U'\x9F', U'\x61C', U'\x200E',
                                U'\x200F', U'\x2028', U'\x202A', U'\x202E', U'\x2066', U'\x2069'}) {
        EXPECT_TRUE(isObeyed(code)) << std::hex << code;
    }
    for (const char32_t code : {U' ', U'~', U'\xA0', U'\x200D', U'\x2010', U'\x202F', U'\x2065', U'\x206A'}) {
        EXPECT_FALSE(isObeyed(code)) << std::hex << code;
    }
}

} // namespace
} // namespace ovra

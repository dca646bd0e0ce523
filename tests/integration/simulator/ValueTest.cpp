// What a request may hold, at its borders, without a request.

#include "base/Codes.h"
#include "base/Json.h"
#include "base/Text.h"
#include "model/FieldInput.h"
#include "watch/Faults.h"
#include "watch/Secrets.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace arraysim;

namespace {

TEST(SimulatorValue, ADecimalTextFitsSixtyFourBits)
{
    EXPECT_EQ(decimal("0"), 0U);
    EXPECT_EQ(decimal("18446744073709551615"), UINT64_MAX);
    for (const char* text : {"", "18446744073709551616", "-1", "1x", " 1", "184467440737095516150"}) {
        EXPECT_FALSE(decimal(text)) << text;
    }
}

TEST(SimulatorValue, ALineOfALogHoldsNoControlByte)
{
    EXPECT_EQ(printable("a~ \xC3\xA4\x1F\x7F\n"), "a~ \xC3\xA4\\x1f\\x7f\\x0a");
}

TEST(SimulatorValue, ABodyIsOneObject)
{
    for (const char* text : {"", "[1]", "7", "null", R"("text")", "{}{}", R"({"a":1,"a":2})", "{'a':1}"}) {
        try {
            parseBody(text);
            ADD_FAILURE() << text;
        } catch (const ArrayError& refused) {
            EXPECT_EQ(refused.code(), Code::BODY_MALFORMED) << text;
        }
    }
    EXPECT_EQ(parseBody(R"({"a":1})")["a"].asInt(), 1);
}

TEST(SimulatorValue, AMemberThatIsRequiredIsNeitherEmptyNorNegative)
{
    const Json::Value body = parseBody(R"({"empty":"","text":"x","zero":0,"below":-1,"half":0.5})");
    EXPECT_THROW(requiredText(body, "empty"), ArrayError);
    EXPECT_THROW(requiredText(body, "zero"), ArrayError);
    EXPECT_EQ(textIn(body, "text", "y"), "x");
    EXPECT_EQ(textIn(body, "none", "y"), "y");
    EXPECT_EQ(numberIn(body, "zero", 5), 0U);
    EXPECT_EQ(numberIn(body, "none", 5), 5U);
    EXPECT_THROW(numberIn(body, "below", 5), ArrayError);
    EXPECT_THROW(numberIn(body, "half", 5), ArrayError);
}

TEST(SimulatorValue, OfAFieldIsTakenUpToItsBounds)
{
    const Field number = Field("N", Wire::DECIMAL).range(1, 255);
    EXPECT_EQ(inputText(number, 1), "1");
    EXPECT_EQ(inputText(number, 255), "255");
    EXPECT_THROW(inputText(number, 0), ArrayError);
    EXPECT_THROW(inputText(number, 256), ArrayError);
    const Field code = Field("C", Wire::CODE).range(0, 2);
    EXPECT_EQ(inputText(code, "2"), "2");
    EXPECT_THROW(inputText(code, "3"), ArrayError);
    const Field text = Field("T", Wire::TEXT).range(1, 16);
    EXPECT_EQ(inputText(text, std::string(16, 'x')).size(), 16U);
    EXPECT_THROW(inputText(text, std::string(17, 'x')), ArrayError);
    EXPECT_THROW(inputText(text, ""), ArrayError);
    const Field any = Field("A", Wire::TEXT);
    EXPECT_EQ(inputText(any, std::string(255, 'x')).size(), 255U);
    EXPECT_THROW(inputText(any, std::string(256, 'x')), ArrayError);
}

TEST(SimulatorValue, OfATextHasNoControlCharacterOfEitherKind)
{
    EXPECT_TRUE(isPlainUtf8("a \xC2\xA0~"));
    for (const char* text : {"\x1F", "\x7F", "\xC2\x80", "\xC2\x9F", "\xC3", "\xFF"}) {
        EXPECT_FALSE(isPlainUtf8(text)) << text;
    }
}

TEST(SimulatorValue, AFaultOfNoShareNeverStrikes)
{
    Faults faults;
    faults.add(parseBody(R"({"action":"close","share":0,"count":0})"));
    for (int i = 0; i < 2000; ++i) {
        ASSERT_FALSE(faults.strike({"GET", "/lun", 0})) << i;
    }
    EXPECT_EQ(faults.list()[0]["hits"].asUInt(), 0U);
}

TEST(SimulatorValue, FaultsAreRemovedOneByOne)
{
    Faults faults;
    const unsigned first = faults.add(parseBody(R"({"action":"close"})"));
    const unsigned second = faults.add(parseBody(R"({"action":"reset"})"));
    EXPECT_TRUE(faults.remove(first));
    EXPECT_FALSE(faults.remove(first));
    ASSERT_EQ(faults.list().size(), 1U);
    EXPECT_EQ(faults.list()[0]["id"], second);
    EXPECT_EQ(faults.list()[0]["action"], "reset");
}

TEST(SimulatorValue, SeveralSecretsOfABodyAreHiddenEachInItsPlace)
{
    const auto none = [](const std::string&) { return false; };
    EXPECT_EQ(shownBody(R"({"CHAPPASSWORD":"first","NAME":"n","CHAPPASSWORDINITATORVERTARGET":"the second"})",
                        none),
              R"({"CHAPPASSWORD":"***","NAME":"n","CHAPPASSWORDINITATORVERTARGET":"***"})");
}

TEST(SimulatorValue, ASecretThatStandsInABodyAsANumberHidesAllOfIt)
{
    const auto digits = [](const std::string& text) { return text.find("12345678") != std::string::npos; };
    EXPECT_EQ(shownBody(R"({"CAPACITY":12345678})", digits), "<21 bytes>");
}

TEST(SimulatorValue, ABodyIsShownUpToFourKibibytes)
{
    const auto none = [](const std::string&) { return false; };
    const auto body = [](std::size_t size) { return R"({"NAME":")" + std::string(size - 11, 'n') + R"("})"; };
    EXPECT_EQ(shownBody(body(4096), none), body(4096));
    EXPECT_EQ(shownBody(body(4097), none), body(4097).substr(0, 4096) + "... <4097 bytes>");
}

} // namespace

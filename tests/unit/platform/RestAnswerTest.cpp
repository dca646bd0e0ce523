#include <string_view>

#include <Answer.h>

#include <gtest/gtest.h>

namespace ovra::rest {
namespace {

const std::string SUCCESS = R"("error":{"code":0,"description":"0"})";

TEST(Answers, AnObjectIsOneRecord)
{
    const auto answer = parseAnswer(R"({"data":{"ID":"7"},)" + SUCCESS + "}");
    ASSERT_TRUE(answer);
    EXPECT_EQ(0, answer->code);
    ASSERT_EQ(1U, answer->records.size());
    EXPECT_EQ("7", answer->records[0]["ID"].asString());
}

TEST(Answers, AnArrayIsARecordAnElement)
{
    const auto answer = parseAnswer(R"({"data":[{"ID":"1"},"text",null,3],)" + SUCCESS + "}");
    ASSERT_TRUE(answer);
    ASSERT_EQ(4U, answer->records.size());
    EXPECT_EQ("text", answer->records[1].asString());
    EXPECT_TRUE(answer->records[2].isNull());
}

TEST(Answers, MissingAndNullDataAreNoRecords)
{
    for (const std::string& text :
         {"{" + SUCCESS + "}", R"({"data":null,)" + SUCCESS + "}", R"({"data":[],)" + SUCCESS + "}"}) {
        const auto answer = parseAnswer(text);
        ASSERT_TRUE(answer) << text;
        EXPECT_EQ(0U, answer->records.size());
    }
    EXPECT_EQ(1U, parseAnswer(R"({"data":{},)" + SUCCESS + "}")->records.size());
}

TEST(Answers, TheCodeMayBeNumberOrDecimalText)
{
    EXPECT_EQ(1077949006, parseAnswer(R"({"error":{"code":1077949006,"description":"d"}})")->code);
    EXPECT_EQ(1077949006, parseAnswer(R"({"error":{"code":"1077949006"}})")->code);
    EXPECT_EQ(-1, parseAnswer(R"({"error":{"code":"-1"}})")->code);
    EXPECT_EQ(2147483647, parseAnswer(R"({"error":{"code":2147483647}})")->code);
}

TEST(Answers, ACodeBeyondTheInterfacesNumbersIsTheLargestWithItsDigitsInTheDescription)
{
    for (const std::string digits : {"2147483648", "4294967295", "18446744073709551615"}) {
        for (const std::string& code : {digits, "\"" + digits + "\""}) {
            const auto answer = parseAnswer(R"({"error":{"code":)" + code + R"(,"description":"busy"}})");
            ASSERT_TRUE(answer) << code;
            EXPECT_EQ(answer->code, 2147483647) << code;
            EXPECT_EQ(std::string_view(answer->description), "(error code " + digits + ") busy");
        }
    }
}

TEST(Answers, ACodeThatIsNoIntegerCannotBeRead)
{
    for (const char* code : {"null", "true", "1.5", "\"\"", "\" 1\"", "\"1 \"", "\"0x1\"", "\"1.0\"", "{}",
                             "[0]", "-2147483649", "\"-2147483649\"", "1e300", "18446744073709551616"}) {
        EXPECT_FALSE(parseAnswer(std::string(R"({"error":{"code":)") + code + "}}")) << code;
    }
    EXPECT_FALSE(parseAnswer(R"({"error":{"description":"d"}})"));
}

TEST(Answers, WithoutAnErrorObjectCannotBeRead)
{
    for (const char* text :
         {"", " ", "{}", "[]", "null", "0", "\"error\"", R"({"error":null})", R"({"error":0})",
          R"({"error":[]})", R"({"error":"0"})", R"({"data":{"error":{"code":0}}})"}) {
        EXPECT_FALSE(parseAnswer(text)) << text;
    }
}

TEST(Answers, DataOfAnotherTypeCannotBeRead)
{
    for (const char* data : {"\"text\"", "1", "true", "1.5"}) {
        EXPECT_FALSE(parseAnswer(std::string(R"({"data":)") + data + "," + SUCCESS + "}")) << data;
    }
}

TEST(Answers, AnErrorIsReportedWhateverItsDataIs)
{
    const auto answer = parseAnswer(R"({"data":"","error":{"code":5,"description":"no such object"}})");
    ASSERT_TRUE(answer);
    EXPECT_EQ(5, answer->code);
    EXPECT_EQ("no such object", answer->description);
    EXPECT_EQ(0U, answer->records.size());
}

TEST(Answers, ADescriptionThatIsNoTextIsEmpty)
{
    for (const char* description : {"null", "1", "{}", "[]"}) {
        EXPECT_EQ("", parseAnswer(std::string(R"({"error":{"code":1,"description":)") + description + "}}")
                          ->description);
    }
}

TEST(Answers, OnlyStrictJsonIsRead)
{
    const std::string good = "{" + SUCCESS + "}";
    ASSERT_TRUE(parseAnswer(good));
    EXPECT_TRUE(parseAnswer(" \r\n" + good + " \r\n"));
    EXPECT_TRUE(parseAnswer("{" + SUCCESS + ",\"/*\":\"\\\"// c\"}"));
    for (const std::string& text :
         {good + "x", good + good, good + std::string(1, '\0'), "/* c */" + good, good + "// c",
          "{" + SUCCESS + ",\"a\":[1/* c */]}", "{" + SUCCESS + ",\"a\":\"\\\"\",\"b\":[1//\n]}",
          "{" + SUCCESS + ",}", "{" + SUCCESS + ",\"a\":NaN}", "{" + SUCCESS + ",'a':1}",
          "{" + SUCCESS + ",\"a\":1,\"a\":2}", "{" + SUCCESS + "," + SUCCESS + "}",
          good.substr(0, good.size() - 1), "{" + SUCCESS + ",\"a\":tru}"}) {
        EXPECT_FALSE(parseAnswer(text)) << text;
    }
}

TEST(Answers, NestedTooDeepCannotBeRead)
{
    const auto nested = [](size_t depth) {
        return R"({"data":)" + std::string(depth, '[') + std::string(depth, ']') + "," + SUCCESS + "}";
    };
    EXPECT_TRUE(parseAnswer(nested(50)));
    EXPECT_FALSE(parseAnswer(nested(200)));
    EXPECT_FALSE(parseAnswer(nested(1000000)));
}

TEST(Answers, HoldAsManyValuesAsBeginInTheirText)
{
    EXPECT_EQ(1U, countValues("0"));
    EXPECT_EQ(4U, countValues("[0,0,0]"));
    EXPECT_EQ(5U, countValues(R"([{},[""]])")); // {} costs as much as two
    EXPECT_EQ(3U, countValues(R"({"a":1,"b":2})"));
    EXPECT_EQ(3U, countValues(R"({"a,[{":"\",[{\\","b":"\\"})")); // nothing in a text counts
}

} // namespace
} // namespace ovra::rest

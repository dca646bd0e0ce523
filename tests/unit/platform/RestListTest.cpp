#include <AnswerReader.h>

#include <gtest/gtest.h>
#include <json/value.h>

#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

namespace ovra::rest {
namespace {

const std::string NO_ERROR = R"("error":{"code":0,"description":"0"})";

/** What a text is as an answer, given in parts of a size. */
std::optional<Answer> readInParts(const std::string& text, const char* member, size_t size)
{
    AnswerReader reader(member);
    for (size_t i = 0; i < text.size(); i += size) {
        EXPECT_TRUE(reader.add(std::string_view(text).substr(i, size)));
    }
    return reader.answer();
}

/** What a caller learns who asks a record for its ID. */
std::string idOf(Json::Value& record)
{
    try {
        return record.isMember("ID") ? "=" + record["ID"].asString() : "none";
    } catch (const Json::Exception&) {
        return "no record";
    }
}

/** The verdict, and the IDs of an answer that can be read. */
std::vector<std::string> told(std::optional<Answer> answer)
{
    if (!answer) {
        return {"unreadable"};
    }
    std::vector<std::string> lines = {std::to_string(answer->code), std::string(answer->description)};
    for (Json::Value& record : answer->records) {
        lines.push_back(idOf(record));
    }
    for (size_t i = 0; i < answer->kept.count(); ++i) {
        lines.push_back(idOf(answer->kept[i]));
    }
    return lines;
}

const std::string GOOD[] = {
    R"({"data":[{"ID":"1","NAME":"a"},{"ID":"2"}],)" + NO_ERROR + "}",
    "{" + NO_ERROR + R"(,"data":[{"ID":"1"}]})",
    "\xEF\xBB\xBF \r\n{\t\"data\" : [ ] , " + NO_ERROR + "} ",
    R"({"data":[{"NAME":"no ID"},{},null,{"ID":null},{"ID":7},{"ID":1.50},{"ID":true}],)" + NO_ERROR + "}",
    R"({"data":[3,"ID",["ID"],true,{"ID":{"ID":[]}},{"ID":[1,{"a":"]"}]}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"\"],[{\\\u0041\ud83d\ude00","a":"b\\"},{"I\u0044":"spelled"}],)" + NO_ERROR + "}",
    R"({"d\u0061ta":[{"ID":"1"},{"ID":"2"}],)" + NO_ERROR + "}",
    R"({"more":{"data":[1]},"list":[{"data":[2]}],"data":[{"data":[{"ID":"inner"}],"ID":"1"}],)" + NO_ERROR +
        "}",
    "{\"data\":[{\"ID\":\"\xFF\xC0\"}]," + NO_ERROR + "}",
    R"({"data":{"ID":"1"},)" + NO_ERROR + "}",
    R"({"data":null,)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}],"error":{"code":"1077949006","description":"busy"}})",
    R"({"data":[{"a":[[[[[[[[[[{"b":{"c":[]}}]]]]]]]]]],"ID":"1"}],)" + NO_ERROR + "}",
};

const std::string BAD[] = {
    "",
    "[]",
    R"({"data":[{"ID":"1"}])",
    R"({"data":[{"ID":"1"})",
    R"({"data":[{"ID":"1"},],)" + NO_ERROR + "}",
    R"({"data":[,{"ID":"1"}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"},,{"ID":"2"}],)" + NO_ERROR + "}",
    R"({"data":[ ,],)" + NO_ERROR + "}",
    R"({"data":[,],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"} {"ID":"2"}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1","ID":"2"}],)" + NO_ERROR + "}",
    R"({"data":[{"a":{"b":1,"b":2}}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}],"data":[{"ID":"2"}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}],"d\u0061ta":[],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}},)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"]},)" + NO_ERROR + "}",
    R"({"data":[}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}]],)" + NO_ERROR + "}",
    R"({"data"[{"ID":"1"}],)" + NO_ERROR + "}",
    R"({"data"::[{"ID":"1"}],)" + NO_ERROR + "}",
    R"({"a":"data":[{"ID":"1"}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}],)" + NO_ERROR + "} x",
    R"({"data":[{"ID":tru}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":'1'}],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}/**/],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}/*,*/],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}/*"*/,{"ID":"2"},{"ID":"*/"}],)" + NO_ERROR + "}",
    "{\"data\":[{\"ID\":\"1\"}//]\n]," + NO_ERROR + "}",
    R"({"data":[{"ID":"\x"}],)" + NO_ERROR + "}",
    R"({"data":[NaN],)" + NO_ERROR + "}",
    R"({"data":[{"ID":"1"}]})",
    R"({"data":[{"ID":"1"}],"error":[]})",
    R"(["data":[{"ID":"1"}]])",
    R"("data":[{"ID":"1"}])",
    std::string("{\"data\":[{\"ID\":\"1\0\"}],", 22) + NO_ERROR + "}",
    std::string("{\"data\":[\0],", 12) + NO_ERROR + "}",
};

TEST(Lists, OfWhichIdsAreKeptGiveTheSameAsThoseThatAreKeptWhole)
{
    for (const std::string& text : GOOD) {
        ASSERT_TRUE(parseAnswer(text)) << text;
        for (const size_t size : {1UL, 2UL, 3UL, 7UL, 1000UL}) {
            EXPECT_EQ(told(parseAnswer(text)), told(readInParts(text, "ID", size))) << text << " " << size;
            EXPECT_EQ(told(parseAnswer(text)), told(readInParts(text, nullptr, size))) << text;
        }
    }
}

TEST(Lists, ThatAreNoStrictJsonAreRefusedHoweverTheyAreCut)
{
    for (const std::string& text : BAD) {
        ASSERT_FALSE(parseAnswer(text)) << text;
        for (const size_t size : {1UL, 2UL, 3UL, 7UL, 1000UL}) {
            EXPECT_FALSE(readInParts(text, "ID", size)) << text << " " << size;
        }
    }
}

TEST(Lists, OfEveryBeginningOfAnAnswerAreRefused)
{
    for (const std::string& text : GOOD) {
        for (size_t length = 0; length < text.find_last_of('}'); ++length) {
            EXPECT_FALSE(readInParts(text.substr(0, length), "ID", 5)) << text.substr(0, length);
        }
    }
}

TEST(Lists, MayBeAsDeepAsAnAnswer)
{
    for (const size_t depth : {90UL, 95UL, 96UL, 97UL, 98UL, 99UL, 100UL, 101UL, 200UL, 100000UL}) {
        const std::string text = R"({"data":[{"ID":"1","a":)" + std::string(depth, '[') +
                                 std::string(depth, ']') + "}]," + NO_ERROR + "}";
        EXPECT_EQ(told(parseAnswer(text)), told(readInParts(text, "ID", 4096))) << depth;
    }
}

TEST(Lists, KeepNothingOfTheirRecordsButTheMember)
{
    auto answer = readInParts(R"({"data":[{"NAME":"a","ID":"1","b":"/"}],)" + NO_ERROR + "}", "ID", 1);
    ASSERT_TRUE(answer);
    ASSERT_EQ(1U, answer->kept.count());
    EXPECT_EQ(std::vector<std::string>{"ID"}, answer->kept[0].getMemberNames());
    EXPECT_EQ(0U, answer->records.size());
}

constexpr size_t MIB = 1024UL * 1024;

/** Gives a part of an answer again and again. @return how often it was taken. */
size_t giveAgain(AnswerReader& reader, const std::string& part, size_t times)
{
    for (size_t i = 0; i < times; ++i) {
        if (!reader.add(part)) {
            return i;
        }
    }
    return times;
}

TEST(Lists, MayBeLargerThanAnAnswerThatIsKept)
{
    const std::string record = R"({"ID":"1","NAME":")" + std::string(MIB, 'n') + "\"}";
    AnswerReader reader("ID");
    ASSERT_TRUE(reader.add(R"({"data":[)" + record));
    ASSERT_EQ(70U, giveAgain(reader, "," + record, 70));
    ASSERT_TRUE(reader.add("]," + NO_ERROR + "}"));
    const auto answer = reader.answer();
    ASSERT_TRUE(answer);
    EXPECT_EQ(71U, answer->kept.count());
}

TEST(Lists, AreBoundedInWhatIsKept)
{
    const std::string id = "{\"ID\":\"" + std::string(MIB, '1') + "\"},";
    for (const std::string& part : {id, std::string(MIB, ' '), std::string(MIB, '[')}) {
        AnswerReader reader("ID");
        ASSERT_TRUE(reader.add(R"({"data":[)"));
        EXPECT_EQ(63U, giveAgain(reader, part, 65)) << part[0];
        EXPECT_STREQ("bytes", reader.excess().what) << part[0];
    }
}

TEST(Lists, CountWhatARecordTakesThatKeepsNothing)
{
    KeptRecords kept;
    kept.add("", Json::objectValue, "ID");
    EXPECT_EQ(strlen("[{}]") + sizeof(uint32_t), kept.size());
}

TEST(Lists, ThatCannotBeReadAreBoundedAsAllAnswersAre)
{
    AnswerReader reader("ID");
    ASSERT_TRUE(reader.add(R"({"data":[},)"));
    EXPECT_EQ(63U, giveAgain(reader, std::string(MIB, ' '), 65));
    EXPECT_EQ(AnswerReader::MOST_BYTES, reader.excess().most);
}

TEST(Lists, WithARecordOfTooManyValuesAreRefused)
{
    std::string zeros;
    for (size_t i = 0; i <= MOST_VALUES; ++i) {
        zeros += "0,";
    }
    AnswerReader reader("ID");
    ASSERT_TRUE(reader.add(R"({"data":[{"ID":"1","a":[)"));
    ASSERT_TRUE(reader.add(zeros));
    EXPECT_FALSE(reader.add("0]}]}"));
    EXPECT_STREQ("values", reader.excess().what);
    EXPECT_LT(MOST_VALUES, reader.excess().size);
}

} // namespace
} // namespace ovra::rest

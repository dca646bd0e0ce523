#include "unit/handlers/Outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

const char* const PRODUCT = "Ovra-Tessel-API-linux-Cpp";
const char* const TIME = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} [0-9]{3}";

} // namespace

Outcome outcomeOf(const std::function<void()>& call)
{
    try {
        call();
    } catch (const OvraAPIExceptionWithErrCode& e) {
        return {Outcome::ERROR_ANSWER, e.what(), e.getErrCode()};
    } catch (const OvraAPIException& e) {
        return {Outcome::FAILED, e.what(), 0};
    }
    return Outcome::returned();
}

void expectWellFormedLogCalls(const RecordingPlatform& platform)
{
    using testing::ElementsAre;
    using testing::MatchesRegex;
    using testing::Not;
    EXPECT_THAT(platform.tags(), testing::Each(PRODUCT));
    for (const auto& record : platform.interfaceRecords()) {
        EXPECT_THAT(record, ElementsAre(PRODUCT, "1", "", Not(""), "", "", "", MatchesRegex(TIME),
                                        MatchesRegex(TIME), MatchesRegex("[0-9]+"), ""));
        EXPECT_LE(record[7], record[8]) << "a call ends before it starts";
    }
    // Each record was written by the function for its result.
    for (const std::string& line : platform.lines("record ")) {
        EXPECT_THAT(line, testing::EndsWith(" 0"));
    }
    for (const std::string& line : platform.lines("record! ")) {
        EXPECT_THAT(line, Not(testing::EndsWith(" 0")));
    }
}

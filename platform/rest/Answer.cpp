#include "Answer.h"

#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace ovra::rest {

namespace {

/// An error code as the interface can hand it on: one that an int does not hold keeps its digits.
struct Code
{
    int value;
    std::string digits; ///< empty when the value tells all
};

std::optional<Code> parseDecimal(std::string_view text)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc() && stop == end) {
        return Code{number, {}};
    }
    if (error == std::errc::result_out_of_range && stop == end && text.front() != '-') {
        return Code{std::numeric_limits<int>::max(), std::string(text)};
    }
    return std::nullopt;
}

std::optional<Code> readCode(const Json::Value& code)
{
    if (code.isString()) {
        return parseDecimal(textOf(code));
    }
    return code.isNumeric() && (code.isInt() || code.isUInt64()) ? parseDecimal(code.asString())
                                                                 : std::nullopt;
}

/// Puts the data into records; false when it is neither an object, an array, null nor missing.
bool takeRecords(Json::Value& data, Json::Value& records)
{
    if (data.isNull()) {
        return true;
    }
    if (data.isArray()) {
        records.swap(data);
        return true;
    }
    if (!data.isObject()) {
        return false;
    }
    records.append(std::move(data));
    return true;
}

} // namespace

std::optional<Answer> parseAnswer(std::string_view text)
{
    std::optional<SecretValue> root = parseStrictly(text);
    if (!root || !root->isObject()) {
        return std::nullopt;
    }
    const Json::Value& error = (*root)["error"];
    if (!error.isObject()) {
        return std::nullopt;
    }
    const std::optional<Code> code = readCode(error["code"]);
    if (!code) {
        return std::nullopt;
    }

    Answer answer;
    answer.code = code->value;
    answer.description = code->digits.empty() ? std::string() : "(error code " + code->digits + ") ";
    answer.description += textOf(error["description"]);
    // An error answer is one whatever came as its data.
    if (!takeRecords((*root)["data"], answer.records) && answer.code == 0) {
        return std::nullopt;
    }
    return answer;
}

} // namespace ovra::rest

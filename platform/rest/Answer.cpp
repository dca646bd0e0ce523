#include "Answer.h"

#include <json/reader.h>

#include <charconv>
#include <memory>
#include <string_view>

namespace ovra::rest {

namespace {

/// Records of the array are two or three levels deep.
constexpr int DEEPEST_NESTING = 100;

std::optional<Json::Value> parseStrictly(const std::string& text)
{
    // The reader takes a NUL for the end of the text.
    if (text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["rejectDupKeys"] = true;
    builder["failIfExtra"] = true;
    builder["stackLimit"] = DEEPEST_NESTING;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &value, nullptr)) {
            return std::nullopt;
        }
    } catch (const Json::Exception&) {
        return std::nullopt; // nested too deep
    }
    return value;
}

std::optional<int> parseDecimal(std::string_view text)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<int> readCode(const Json::Value& code)
{
    if (code.isString()) {
        return parseDecimal(code.asString());
    }
    if (code.isNumeric() && code.isInt()) {
        return code.asInt();
    }
    return std::nullopt;
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

std::optional<Answer> parseAnswer(const std::string& text)
{
    std::optional<Json::Value> root = parseStrictly(text);
    if (!root || !root->isObject()) {
        return std::nullopt;
    }
    const Json::Value& error = (*root)["error"];
    if (!error.isObject()) {
        return std::nullopt;
    }
    const std::optional<int> code = readCode(error["code"]);
    if (!code) {
        return std::nullopt;
    }

    Answer answer;
    answer.code = *code;
    if (error["description"].isString()) {
        answer.description = error["description"].asString();
    }
    // An error answer is one whatever came as its data.
    if (!takeRecords((*root)["data"], answer.records) && answer.code == 0) {
        return std::nullopt;
    }
    return answer;
}

} // namespace ovra::rest

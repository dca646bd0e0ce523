#include "Answer.h"

#include "LibraryLock.h"

#include <json/reader.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <memory>
#include <system_error>
#include <vector>

namespace ovra::rest {

namespace {

/// Records of the array are two or three levels deep.
constexpr int DEEPEST_NESTING = 100;

/// The bytes of a string value, where they stand.
std::string_view textOf(const Json::Value& text)
{
    const char* begin = nullptr;
    const char* end = nullptr;
    return text.getString(&begin, &end) ? std::string_view(begin, static_cast<size_t>(end - begin))
                                        : std::string_view();
}

void wipeTexts(const Json::Value& value)
{
    for (const Json::Value& member : value) {
        wipeTexts(member);
    }
    if (value.isString()) {
        const std::string_view text = textOf(value);
        explicit_bzero(const_cast<char*>(text.data()), text.size());
    }
}

using Reader = std::unique_ptr<Json::CharReader>;

Reader makeReader()
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["rejectDupKeys"] = true;
    builder["failIfExtra"] = true;
    builder["stackLimit"] = DEEPEST_NESTING;
    return Reader(builder.newCharReader());
}

/** Readers that are free: to make one costs a third of reading a record. As many as have read at the same
 * time. */
std::vector<Reader>& freeReaders()
{
    return processWide<std::vector<Reader>>();
}

Reader takeReader()
{
    {
        const std::lock_guard<std::mutex> lock(libraryMutex());
        if (!freeReaders().empty()) {
            Reader reader = std::move(freeReaders().back());
            freeReaders().pop_back();
            return reader;
        }
    }
    return makeReader();
}

void keep(Reader reader)
{
    const std::lock_guard<std::mutex> lock(libraryMutex());
    try {
        freeReaders().push_back(std::move(reader));
    } catch (const std::bad_alloc&) { // the answer is read all the same
    }
}

std::optional<SecretValue> parseStrictly(std::string_view text)
{
    // The reader takes a NUL for the end of the text.
    if (text.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    Reader reader = takeReader();
    std::optional<SecretValue> value(std::in_place);
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &*value, nullptr)) {
            value.reset();
        }
        keep(std::move(reader));
    } catch (const Json::Exception&) {
        return std::nullopt; // nested too deep: the reader stopped in the middle, and is not used again
    }
    return value;
}

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

SecretValue::~SecretValue()
{
    wipeTexts(*this);
}

size_t countValues(std::string_view text)
{
    size_t values = 1;
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char character = text[i];
        if (character == '"') {
            quoted = !quoted;
        } else if (quoted) {
            i += character == '\\' ? 1 : 0;
        } else if (character == ',' || character == '[' || character == '{') {
            ++values;
        }
    }
    return values;
}

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

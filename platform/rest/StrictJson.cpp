#include "StrictJson.h"

#include "LibraryLock.h"

#include <json/reader.h>

#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace ovra::rest {

namespace {

/// Records of the array are two or three levels deep.
constexpr int DEEPEST_NESTING = 100;

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

template <class Visit>
void forEachOutsideStrings(std::string_view text, Visit visit)
{
    bool quoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            quoted = !quoted;
        } else if (quoted) {
            i += text[i] == '\\' ? 1 : 0;
        } else {
            visit(text[i]);
        }
    }
}

bool hasComment(std::string_view text)
{
    bool found = false;
    if (text.find('/') != std::string_view::npos) {
        forEachOutsideStrings(text, [&](char character) { found = found || character == '/'; });
    }
    return found;
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

} // namespace

std::string_view textOf(const Json::Value& text)
{
    const char* begin = nullptr;
    const char* end = nullptr;
    return text.getString(&begin, &end) ? std::string_view(begin, static_cast<size_t>(end - begin))
                                        : std::string_view();
}

std::optional<SecretValue> parseStrictly(std::string_view text)
{
    // The reader takes a NUL for the end of the text, and a comment behind the element of an array.
    if (text.find('\0') != std::string_view::npos || hasComment(text)) {
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

SecretValue::~SecretValue()
{
    wipeTexts(*this);
}

size_t countValues(std::string_view text)
{
    size_t values = 1;
    forEachOutsideStrings(text, [&](char character) {
        values += character == ',' || character == '[' || character == '{' ? 1 : 0;
    });
    return values;
}

} // namespace ovra::rest

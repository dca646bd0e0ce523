// An answer of which the IDs are kept, cut in parts anywhere: it tells what the same answer does that is kept
// whole.
#include "FuzzTarget.h"

#include <optional>
#include <string_view>

#include <AnswerReader.h>

#include <json/value.h>

using namespace ovra::rest;

namespace {

constexpr size_t LARGEST_PART = 16;

std::string idOf(Json::Value& record)
{
    try {
        return record.isMember("ID") ? "=" + record["ID"].asString() : "none";
    } catch (const Json::Exception&) {
        return "no record";
    }
}

} // namespace

/** The first byte says how long the parts are. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) {
        return 0;
    }
    const std::string text = textOf(data + 1, size - 1);
    const size_t part = 1 + data[0] % LARGEST_PART;
    AnswerReader reader("ID");
    for (size_t i = 0; i < text.size(); i += part) {
        mustHold(reader.add(std::string_view(text).substr(i, part)), "it is not too large");
    }
    std::optional<Answer> kept = reader.answer();
    std::optional<Answer> whole = parseAnswer(text);
    mustHold(kept.has_value() == whole.has_value(), "both can be read, or none");
    if (!whole) {
        return 0;
    }
    const bool isList = kept->kept.count() != 0;
    mustHold(kept->code == whole->code && kept->description == whole->description, "they say the same");
    mustHold((isList ? kept->kept.count() : kept->records.size()) == whole->records.size(),
             "as many records");
    for (Json::ArrayIndex i = 0; i < whole->records.size(); ++i) {
        mustHold(idOf(isList ? kept->kept[i] : kept->records[i]) == idOf(whole->records[i]), "the same ID");
    }
    return 0;
}

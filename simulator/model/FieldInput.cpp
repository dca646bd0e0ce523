#include "model/FieldInput.h"

#include "base/Codes.h"
#include "base/Text.h"

#include <ovra/text/Utf8.h>

#include <algorithm>

namespace arraysim {
namespace {

[[noreturn]] void invalid(const Field& field, const std::string& what)
{
    throw ArrayError(Code::MEMBER_INVALID, "The member " + field.key + " " + what + ".");
}

std::string bounds(const Field& field)
{
    return std::to_string(field.min) + " to " + std::to_string(field.max);
}

std::string number(const Field& field, const Json::Value& member)
{
    if (!member.isUInt64()) {
        invalid(field, "must be a whole number that is not negative");
    }
    if (member.asUInt64() < field.min || member.asUInt64() > field.max) {
        invalid(field, "must be " + bounds(field));
    }
    return std::to_string(member.asUInt64());
}

std::string text(const Field& field, const Json::Value& member)
{
    constexpr unsigned long long LONGEST = 255;
    if (!member.isString()) {
        invalid(field, "must be a text");
    }
    std::string value = member.asString();
    const unsigned long long limit = std::min(field.max, LONGEST);
    if (value.size() < field.min || value.size() > limit) {
        invalid(field,
                "must be " + std::to_string(field.min) + " to " + std::to_string(limit) + " bytes long");
    }
    if (!isPlainUtf8(value)) {
        invalid(field, "must be UTF-8 text without control characters");
    }
    return value;
}

std::string flag(const Field& field, const Json::Value& member)
{
    if (member.isBool()) {
        return member.asBool() ? "true" : "false";
    }
    if (!member.isString() || (member.asString() != "true" && member.asString() != "false")) {
        invalid(field, "must be true or false");
    }
    return member.asString();
}

std::string code(const Field& field, const Json::Value& member)
{
    const auto value = member.isString() ? decimal(member.asString()) : std::nullopt;
    if (!value || *value < field.min || *value > field.max) {
        invalid(field, "must be a text of a number " + bounds(field));
    }
    return std::to_string(*value);
}

} // namespace

std::string inputText(const Field& field, const Json::Value& member)
{
    switch (field.wire) {
    case Wire::TEXT:
        return text(field, member);
    case Wire::DECIMAL:
    case Wire::NUMBER:
        return number(field, member);
    case Wire::FLAG:
        return flag(field, member);
    case Wire::CODE:
        return code(field, member);
    }
    return {};
}

bool isPlainUtf8(std::string_view text)
{
    while (!text.empty()) {
        const auto [code, length] = ovra::utf8Character(text);
        if (length == 0 || code < 0x20 || (code >= 0x7f && code < 0xa0)) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

} // namespace arraysim

#include "model/FieldInput.h"

#include "base/Codes.h"
#include "base/Text.h"

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
    static constexpr unsigned long long LONGEST = 255;
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

/** How many continuation bytes follow a lead byte, and the smallest code point that needs as many. */
struct Sequence
{
    int follow;
    unsigned smallest;
};

Sequence sequence(unsigned char lead)
{
    if (lead < 0x80) {
        return {0, 0};
    }
    if ((lead & 0xe0) == 0xc0) {
        return {1, 0x80};
    }
    if ((lead & 0xf0) == 0xe0) {
        return {2, 0x800};
    }
    return (lead & 0xf8) == 0xf0 ? Sequence{3, 0x10000} : Sequence{-1, 0};
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

bool isPlainUtf8(const std::string& text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const Sequence expected = sequence(lead);
        if (expected.follow < 0 || lead < 0x20 || lead == 0x7f) {
            return false;
        }
        unsigned point = expected.follow == 0 ? lead : lead & (0x3fU >> expected.follow);
        for (int k = 0; k < expected.follow; ++k) {
            const auto next = ++i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
            if ((next & 0xc0) != 0x80) {
                return false;
            }
            point = (point << 6) | (next & 0x3fU);
        }
        const bool surrogate = point >= 0xd800 && point <= 0xdfff;
        if (point < expected.smallest || point > 0x10ffff || surrogate || (point >= 0x80 && point < 0xa0)) {
            return false;
        }
    }
    return true;
}

} // namespace arraysim

#ifndef OVRA_REST_STRICTJSON_H
#define OVRA_REST_STRICTJSON_H

#include <json/value.h>

#include <optional>
#include <string_view>

namespace ovra::rest {

/** A JSON value whose texts are overwritten when it goes. */
struct SecretValue : Json::Value
{
    using Json::Value::Value;
    SecretValue(SecretValue&&) = default;
    SecretValue& operator=(SecretValue&&) = default;
    ~SecretValue();
};

/** The bytes of a string value, where they stand; of another none. */
std::string_view textOf(const Json::Value& text);

/** Reads an object or an array; nothing when the text is not strict JSON. */
std::optional<SecretValue> parseStrictly(std::string_view text);

/** Most values of a JSON text: each costs up to 160 bytes beside its text, however short that is. */
constexpr size_t MOST_VALUES = 4000000;

/** How many values a JSON text holds, told by what begins or separates them; of other texts any number. */
size_t countValues(std::string_view text);

} // namespace ovra::rest

#endif

#ifndef OVRA_REST_ANSWER_H
#define OVRA_REST_ANSWER_H

#include <ovra/text/Secret.h>

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

/** The array's answer to one request. */
struct Answer
{
    int code = 0; ///< 0: success
    SecretText description;
    SecretValue records = Json::arrayValue;
};

/** Most values of an answer: each costs up to 160 bytes beside its text, however short that is. */
constexpr size_t MOST_VALUES = 4000000;

/** How many values a JSON text holds, told by what begins or separates them; of other texts any number. */
size_t countValues(std::string_view text);

/** Reads an answer; nothing when the text is not strict JSON or has no error object that can be read. */
std::optional<Answer> parseAnswer(std::string_view text);

} // namespace ovra::rest

#endif

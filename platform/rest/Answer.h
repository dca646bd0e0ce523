#ifndef OVRA_REST_ANSWER_H
#define OVRA_REST_ANSWER_H

#include <json/value.h>

#include <optional>
#include <string>

namespace ovra::rest {

/** The array's answer to one request. */
struct Answer
{
    int code = 0; ///< 0: success
    std::string description;
    Json::Value records{Json::arrayValue};
};

/** Reads an answer; nothing when the text is not strict JSON or has no error object that can be read. */
std::optional<Answer> parseAnswer(const std::string& text);

} // namespace ovra::rest

#endif

#ifndef OVRA_REST_ANSWER_H
#define OVRA_REST_ANSWER_H

#include "KeptRecords.h"
#include "StrictJson.h"

#include <ovra/text/Secret.h>

#include <optional>
#include <string_view>

namespace ovra::rest {

/** The array's answer to one request. */
struct Answer
{
    int code = 0; ///< 0: success
    SecretText description;
    SecretValue records = Json::arrayValue;
    KeptRecords kept; ///< those of which one member was kept; then there are no others
};

/** Reads an answer; nothing when the text is not strict JSON or has no error object that can be read. */
std::optional<Answer> parseAnswer(std::string_view text);

} // namespace ovra::rest

#endif

#ifndef OVRA_REST_HTTPREQUEST_H
#define OVRA_REST_HTTPREQUEST_H

#include "ServerAddress.h"

#include <ovra/rest/RestRequest.h>
#include <ovra/text/Secret.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ovra::rest {

/** Names and values; outer blanks of a value are not sent, and an empty one not at all. */
using Headers = std::vector<std::pair<std::string, SecretText>>;

/** Sets a header; one of that name that is there already is replaced. */
void setHeader(Headers& headers, const std::string& name, std::string_view value);

/** One HTTP request, ready to be sent. */
struct HttpRequest
{
    ServerAddress server;
    REST_REQUEST_MODE_E method = REST_GET;
    std::string target; ///< path and query, encoded
    Headers headers;
    std::optional<SecretText> body;

    /** Bytes of the head as it is sent, or a few more. */
    size_t headBytes() const;
};

} // namespace ovra::rest

#endif

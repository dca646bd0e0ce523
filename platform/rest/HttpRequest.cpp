#include "HttpRequest.h"

#include <cstring>

namespace ovra::rest {

void setHeader(Headers& headers, const std::string& name, std::string_view value)
{
    for (auto& header : headers) {
        if (header.first == name) {
            header.second = value;
            return;
        }
    }
    headers.emplace_back(name, value);
}

size_t HttpRequest::headBytes() const
{
    constexpr std::string_view OTHER_LINES =
        "DELETE  HTTP/1.1\r\nHost: \r\nAccept: */*\r\n\r\n"
        "Content-Type: application/json\r\nContent-Length: 1234567890\r\n";
    constexpr std::string_view PORT = ":65535";
    size_t bytes = OTHER_LINES.size() + server.host.size() + PORT.size() + target.size();
    for (const auto& [name, value] : headers) {
        bytes += name.size() + value.size() + strlen(": \r\n");
    }
    return bytes;
}

} // namespace ovra::rest

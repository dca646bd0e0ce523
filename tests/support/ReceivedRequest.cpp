#include "ReceivedRequest.h"

#include <strings.h>

namespace tessel_test {

std::optional<ReceivedRequest> takeRequest(std::string& input, unsigned connection)
{
    const size_t headEnd = input.find("\r\n\r\n");
    if (headEnd == std::string::npos) {
        return std::nullopt;
    }
    ReceivedRequest request;
    request.connection = connection;
    request.head = input.substr(0, headEnd + 2);
    const std::string length = request.header("Content-Length");
    const size_t bodyLength = length.empty() ? 0 : std::stoul(length);
    if (input.size() < headEnd + 4 + bodyLength) {
        return std::nullopt;
    }
    request.body = input.substr(headEnd + 4, bodyLength);
    input.erase(0, headEnd + 4 + bodyLength);
    return request;
}

std::string ReceivedRequest::method() const
{
    return head.substr(0, head.find(' '));
}

std::string ReceivedRequest::target() const
{
    const size_t begin = head.find(' ') + 1;
    return head.substr(begin, head.find(" HTTP/", begin) - begin);
}

std::string ReceivedRequest::header(const std::string& name) const
{
    for (size_t line = head.find("\r\n"); line + 2 < head.size(); line = head.find("\r\n", line + 2)) {
        const char* begin = head.c_str() + line + 2;
        if (strncasecmp(begin, name.c_str(), name.size()) != 0 || begin[name.size()] != ':') {
            continue;
        }
        const size_t value = head.find_first_not_of(' ', line + 2 + name.size() + 1);
        return head.substr(value, head.find("\r\n", value) - value);
    }
    return "";
}

} // namespace tessel_test

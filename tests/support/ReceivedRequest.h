#ifndef SUPPORT_RECEIVEDREQUEST_H
#define SUPPORT_RECEIVEDREQUEST_H

#include <optional>
#include <string>

namespace tessel_test {

/** One request as it arrived. */
struct ReceivedRequest
{
    unsigned connection = 0; ///< which accepted connection, counted from 1
    std::string head;        ///< request line and header lines with CR LF, without the blank line
    std::string body;

    std::string method() const;
    std::string target() const;
    /** Value of a header, names compared without case; empty when there is none. */
    std::string header(const std::string& name) const;
};

/** Takes the first request out of what has come over a connection; nothing until it is whole. */
std::optional<ReceivedRequest> takeRequest(std::string& input, unsigned connection);

} // namespace tessel_test

#endif

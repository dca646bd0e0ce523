#ifndef SIMULATOR_HTTP_BODIES_H
#define SIMULATOR_HTTP_BODIES_H

#include <httplib.h>

#include <string>

namespace arraysim {

/** Above this many bytes a body is refused, however it is sent. */
constexpr std::size_t LARGEST_BODY = 1U << 20;

/** How the reading of a body went. */
enum class BodyRead
{
    WHOLE,
    TOO_LARGE, ///< but read to its end
    BROKEN     ///< what follows on the connection is no request
};

/** Reads a body; one that is too large costs no memory. */
BodyRead readBody(const httplib::ContentReader& reader, std::string& body);

/** Whether the HTTP library would read this request's body without a limit, or take it for a request. */
bool carriesStrayBody(const httplib::Request& request);

} // namespace arraysim

#endif

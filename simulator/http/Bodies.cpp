#include "http/Bodies.h"

namespace arraysim {
namespace {

/** Up to here a body that is too large is read, so that the client gets to read the refusal. */
constexpr std::size_t LARGEST_DRAINED = 16U << 20;

} // namespace

BodyRead readBody(const httplib::ContentReader& reader, std::string& body)
{
    std::size_t size = 0;
    const bool whole = reader([&](const char* data, std::size_t length) {
        size += length;
        if (size <= LARGEST_BODY) {
            body.append(data, length);
        }
        return size <= LARGEST_DRAINED;
    });
    if (!whole) {
        return BodyRead::BROKEN;
    }
    return size > LARGEST_BODY ? BodyRead::TOO_LARGE : BodyRead::WHOLE;
}

bool carriesStrayBody(const httplib::Request& request)
{
    if (request.method == "POST" || request.method == "PUT") {
        // Parts of a form are kept apart from the reader that counts.
        return request.get_header_value("Content-Type").rfind("multipart/", 0) == 0;
    }
    if (request.method == "PRI") {
        return true;
    }
    const bool readToALimit = request.method == "DELETE" || request.method == "PATCH";
    const std::string length = request.get_header_value("Content-Length");
    return request.has_header("Transfer-Encoding") || (!readToALimit && !length.empty() && length != "0");
}

} // namespace arraysim

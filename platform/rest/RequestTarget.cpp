#include "RequestTarget.h"

#include <string_view>

namespace ovra::rest {

namespace {

bool mayStandRaw(unsigned char byte)
{
    // "#" would begin a fragment, which is no part of a request target.
    static constexpr std::string_view REFUSED = "\"#<>\\^`{|}";
    return byte > 0x20 && byte < 0x7F && REFUSED.find(static_cast<char>(byte)) == std::string_view::npos;
}

} // namespace

std::string encodeRequestTarget(const std::string& path)
{
    static constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(path.size() + 16);
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (mayStandRaw(byte)) {
            encoded += character;
        } else {
            encoded.append({'%', DIGITS[byte >> 4], DIGITS[byte & 0xF]});
        }
    }
    return encoded;
}

} // namespace ovra::rest

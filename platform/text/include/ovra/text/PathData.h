#ifndef OVRA_TEXT_PATHDATA_H
#define OVRA_TEXT_PATHDATA_H

#include <cstring>
#include <string>

namespace ovra {

/**
 * A text of somebody else's inside a path: what would end it, or begin something else, is percent-encoded, so
 * that no name adds a condition and no ID reaches another resource.
 */
inline std::string pathData(const std::string& text)
{
    static constexpr char HEX[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || std::strchr("%&#+?/", c) != nullptr) {
            encoded += {'%', HEX[byte >> 4], HEX[byte & 0xF]};
        } else {
            encoded += c;
        }
    }
    return encoded;
}

} // namespace ovra

#endif

#include "base/Text.h"

#include <cstdint>
#include <cstdio>

namespace arraysim {

std::optional<unsigned long long> decimal(const std::string& text)
{
    unsigned long long value = 0;
    for (const char c : text) {
        const auto digit = static_cast<unsigned long long>(c - '0');
        if (c < '0' || c > '9' || value > (UINT64_MAX - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return text.empty() ? std::nullopt : std::make_optional(value);
}

std::string printable(const std::string& text)
{
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7f) {
            shown += c;
        } else {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
            shown += escape;
        }
    }
    return shown;
}

} // namespace arraysim

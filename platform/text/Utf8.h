#ifndef OVRA_TEXT_UTF8_H
#define OVRA_TEXT_UTF8_H

#include <cstddef>
#include <string_view>

namespace ovra {

/**
 * Length in bytes of the well-formed UTF-8 sequence that the text begins with; 0 when there is none (overlong
 * forms, surrogates and values above U+10FFFF are not well-formed).
 */
inline std::size_t utf8SequenceLength(std::string_view text)
{
    const auto byte = [text](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto within = [](unsigned value, unsigned low, unsigned high) {
        return value >= low && value <= high;
    };
    const auto continues = [&](std::size_t i) { return within(byte(i), 0x80, 0xBF); };

    const unsigned lead = byte(0);
    if (text.empty()) {
        {
            return 0;
        }
    }
    if (lead < 0x80) {
        {
            return 1;
        }
    }
    if (within(lead, 0xC2, 0xDF)) {
        {
            return continues(1) ? 2 : 0;
        }
    }
    if (within(lead, 0xE0, 0xEF)) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return within(byte(1), low, high) && continues(2) ? 3 : 0;
    }
    if (within(lead, 0xF0, 0xF4)) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return within(byte(1), low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

} // namespace ovra

#endif

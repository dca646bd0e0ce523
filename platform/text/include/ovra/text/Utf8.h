#ifndef OVRA_TEXT_UTF8_H
#define OVRA_TEXT_UTF8_H

#include <cstddef>
#include <string_view>

namespace ovra {

/** A character of a UTF-8 text. */
struct Utf8Character
{
    char32_t code = 0;
    std::size_t length = 0; ///< in bytes, 1 to 4; 0: the bytes are not well-formed UTF-8
};

/**
 * The character that the text begins with. Nothing (length 0) when there is none: at the end of the text, and
 * for what is not well-formed (cut sequences, overlong forms, surrogates, values above U+10FFFF).
 */
inline Utf8Character utf8Character(std::string_view text)
{
    constexpr char32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000}; // that needs as many bytes
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };

    if (text.empty()) {
        return {};
    }
    const unsigned lead = byte(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) {
        return {};
    }
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return {};
        }
        code = (code << 6U) | (byte(i) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < SMALLEST[length] || code > 0x10FFFF || surrogate) {
        return {};
    }
    return {code, length};
}

/**
 * True for a character that terminals and viewers obey instead of showing: controls (line ends and tabs among
 * them), line separators, and the marks that turn the direction of writing.
 */
inline bool isObeyed(char32_t code)
{
    const auto within = [code](char32_t low, char32_t high) { return code >= low && code <= high; };
    return code < 0x20 || within(0x7F, 0x9F) || code == 0x061C || within(0x200E, 0x200F) ||
           within(0x2028, 0x202E) || within(0x2066, 0x2069);
}

} // namespace ovra

#endif

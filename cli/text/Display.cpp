#include "text/Display.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <langinfo.h>

namespace tesselctl {
namespace {

struct Character
{
    uint32_t code = 0;
    size_t bytes = 1;
    bool good = false;
};

Character decode(const std::string& text, size_t at)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) {
        return {lead, 1, false};
    }
    uint32_t code = lead & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return {lead, 1, false};
        }
        code = (code << 6) | (byte(at + i) & 0x3FU);
    }
    static const std::array<uint32_t, 5> LOWEST = {0, 0, 0x80, 0x800, 0x10000};
    const bool good = code >= LOWEST[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    return good ? Character{code, length, true} : Character{lead, 1, false};
}

bool steersTerminal(uint32_t code)
{
    const bool control = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool direction = code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
                           (code >= 0x2066 && code <= 0x2069);
    return control || direction;
}

std::string escaped(const Character& character)
{
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), character.code < 0x100 ? "\\x%02X" : "\\u{%X}",
                  character.code);
    return buffer.data();
}

template <class Refused>
std::string filtered(const std::string& text, Refused refused)
{
    std::string result;
    for (size_t at = 0; at < text.size();) {
        const Character character = decode(text, at);
        result += refused(character) ? escaped(character) : text.substr(at, character.bytes);
        at += character.bytes;
    }
    return result;
}

size_t widthOf(uint32_t code)
{
    const int width = wcwidth(static_cast<wchar_t>(code));
    return width < 0 ? 1 : static_cast<size_t>(width);
}

} // namespace

std::string printable(const std::string& text)
{
    return filtered(text, [](const Character& c) { return !c.good || steersTerminal(c.code); });
}

std::string validUtf8(const std::string& text)
{
    return filtered(text, [](const Character& c) { return !c.good; });
}

size_t displayWidth(const std::string& text)
{
    size_t width = 0;
    for (size_t at = 0; at < text.size();) {
        const Character character = decode(text, at);
        width += character.good ? widthOf(character.code) : 1;
        at += character.bytes;
    }
    return width;
}

std::string cutTo(const std::string& text, size_t width)
{
    if (displayWidth(text) <= width) {
        return text;
    }
    std::string result;
    size_t used = 0;
    for (size_t at = 0; at < text.size();) {
        const Character character = decode(text, at);
        used += widthOf(character.code);
        if (used + 1 > width) {
            break;
        }
        result += text.substr(at, character.bytes);
        at += character.bytes;
    }
    return result + (isUtf8Terminal() ? "\u2026" : "~");
}

bool isUtf8Terminal()
{
    return std::string(nl_langinfo(CODESET)) == "UTF-8";
}

} // namespace tesselctl

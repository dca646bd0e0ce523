#include "LineText.h"

#include <ovra/text/Utf8.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace ovra::log {

namespace {

void appendBytes(std::string& line, std::string_view bytes)
{
    static constexpr const char* DIGITS = "0123456789ABCDEF";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        line.append({'\\', 'x', DIGITS[value >> 4], DIGITS[value & 0xF]});
    }
}

/// Whether nothing is done to a character, whatever it is within but a word: nearly all there are.
constexpr std::array<bool, 256> PLAIN = [] {
    std::array<bool, 256> plain = {};
    for (size_t byte = ' '; byte < 0x7F; ++byte) {
        plain[byte] = byte != '\\' && byte != '"';
    }
    return plain;
}();

/// Whether all of eight characters are: they are looked at as one number.
bool areEightPlain(const char* text, Within within)
{
    constexpr std::uint64_t ONES = 0x0101010101010101;
    constexpr std::uint64_t HIGHEST = ONES << 7;
    std::uint64_t eight = 0;
    std::memcpy(&eight, text, sizeof(eight));
    const auto isOneBelow = [](std::uint64_t bytes, std::uint64_t bound) {
        return (bytes - ONES * bound) & ~bytes & HIGHEST;
    };
    const auto isOne = [&](unsigned char wanted) { return isOneBelow(eight ^ (ONES * wanted), 1); };
    const std::uint64_t found = (eight & HIGHEST) | isOneBelow(eight, within == Within::Word ? '!' : ' ') |
                                isOne(0x7F) | isOne('\\') | isOne('"');
    return found == 0;
}

/// How many of them the text begins with.
size_t lengthOfPlain(std::string_view text, Within within)
{
    size_t eights = 0;
    while (text.size() - eights >= 8 && areEightPlain(text.data() + eights, within)) {
        eights += 8;
    }
    const auto isPlain = [within](char character) {
        return PLAIN[static_cast<unsigned char>(character)] && (character != ' ' || within != Within::Word);
    };
    const auto rest = std::find_if_not(text.begin() + eights, text.end(), isPlain);
    return static_cast<size_t>(rest - text.begin());
}

void appendSingle(std::string& line, char character, Within within)
{
    switch (character) {
    case '\n':
        line += "\\n";
        return;
    case '\r':
        line += "\\r";
        return;
    case '\t':
        line += "\\t";
        return;
    case '\\':
        line += "\\\\";
        return;
    default:
        break;
    }
    const auto byte = static_cast<unsigned char>(character);
    if (within == Within::Quotes && character == '"') {
        line += "\\\"";
    } else if (byte < 0x20 || byte == 0x7F || (within == Within::Word && character == ' ')) {
        appendBytes(line, {&character, 1});
    } else {
        line += character;
    }
}

} // namespace

std::string escaped(std::string_view text, Within within)
{
    std::string line;
    line.reserve(text.size());
    appendEscaped(line, text, within);
    return line;
}

void appendEscaped(std::string& line, std::string_view text, Within within)
{
    if (text.empty() && within == Within::Word) {
        line += '-';
    }
    while (!text.empty()) {
        const size_t plain = lengthOfPlain(text, within);
        line.append(text.data(), plain);
        text.remove_prefix(plain);
        if (text.empty()) {
            return;
        }
        const auto [code, length] = utf8Character(text);
        const std::string_view bytes = text.substr(0, std::max<size_t>(length, 1));
        if (length == 1) {
            appendSingle(line, text.front(), within);
        } else if (length == 0 || isObeyed(code)) {
            appendBytes(line, bytes);
        } else {
            line += bytes;
        }
        text.remove_prefix(bytes.size());
    }
}

} // namespace ovra::log

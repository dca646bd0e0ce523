#include "LineText.h"

#include "../text/Utf8.h"

#include <algorithm>

namespace ovra::log {

namespace {

void appendBytes(std::string& line, std::string_view bytes)
{
    static constexpr const char* digits = "0123456789ABCDEF";
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        line.append({'\\', 'x', digits[value >> 4], digits[value & 0xF]});
    }
}

/// Characters of several bytes that viewers obey instead of showing: C1 controls, line separators and marks
/// that turn the direction of writing.
bool isObeyed(std::string_view character)
{
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(character[i]); };
    if (character.size() == 2) {
        return byte(0) == 0xC2 && byte(1) < 0xA0;
    }
    if (character.size() != 3 || byte(0) != 0xE2) {
        return false;
    }
    return (byte(1) == 0x80 && byte(2) >= 0xA8 && byte(2) <= 0xAE) || // U+2028 to U+202E
           (byte(1) == 0x81 && byte(2) >= 0xA6 && byte(2) <= 0xA9);   // U+2066 to U+2069
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
    if (text.empty() && within == Within::Word) {
        line = "-";
    }
    line.reserve(text.size());
    while (!text.empty()) {
        const size_t length = utf8SequenceLength(text);
        const std::string_view character = text.substr(0, std::max<size_t>(length, 1));
        if (length == 1) {
            appendSingle(line, text.front(), within);
        } else if (length == 0 || isObeyed(character)) {
            appendBytes(line, character);
        } else {
            line += character;
        }
        text.remove_prefix(character.size());
    }
    return line;
}

} // namespace ovra::log

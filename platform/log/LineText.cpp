#include "LineText.h"

#include <ovra/text/Utf8.h>

#include <algorithm>
#include <array>

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

/// How many of them the text begins with.
size_t lengthOfPlain(std::string_view text, Within within)
{
    const auto isPlain = [within](char character) {
        return PLAIN[static_cast<unsigned char>(character)] && (character != ' ' || within != Within::Word);
    };
    return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isPlain) - text.begin());
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

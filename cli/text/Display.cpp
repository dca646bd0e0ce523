#include "text/Display.h"

#include <ovra/text/Utf8.h>

#include <array>
#include <cstdio>
#include <cwchar>
#include <langinfo.h>

namespace tesselctl {
namespace {

using ovra::Utf8Character;

std::string hexadecimal(char32_t code, int digits)
{
    std::array<char, 16> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%0*X", digits, static_cast<unsigned>(code));
    return buffer.data();
}

std::string inBraces(char32_t code)
{
    return "\\u{" + hexadecimal(code, 1) + "}";
}

/** The text with what `written` makes of each character; a byte that is not UTF-8 comes with length 0. */
template <class Written>
std::string rewritten(const std::string& text, Written written)
{
    std::string result;
    for (size_t at = 0; at < text.size();) {
        Utf8Character character = ovra::utf8Character(std::string_view(text).substr(at));
        const size_t length = character.length == 0 ? 1 : character.length;
        character.code = character.length == 0 ? static_cast<unsigned char>(text[at]) : character.code;
        result += written(character, text.substr(at, length));
        at += length;
    }
    return result;
}

std::string escaped(const Utf8Character& character)
{
    return character.code < 0x100 ? "\\x" + hexadecimal(character.code, 2) : inBraces(character.code);
}

bool isUtf8Locale()
{
    return std::string(nl_langinfo(CODESET)) == "UTF-8";
}

} // namespace

std::string printable(const std::string& text)
{
    return rewritten(text, [](const Utf8Character& character, const std::string& bytes) {
        return character.length == 0 || ovra::isObeyed(character.code) ? escaped(character) : bytes;
    });
}

std::string inLocale(const std::string& text)
{
    return isUtf8Locale() ? text
                          : rewritten(text, [](const Utf8Character& character, const std::string& bytes) {
                                return character.code < 0x80 ? bytes : inBraces(character.code);
                            });
}

std::string validUtf8(const std::string& text)
{
    return rewritten(text, [](const Utf8Character& character, const std::string& bytes) {
        return character.length == 0 ? escaped(character) : bytes;
    });
}

std::string plainJson(const std::string& json)
{
    return rewritten(json, [](const Utf8Character& character, const std::string& bytes) {
        return character.code >= 0x7F && ovra::isObeyed(character.code)
                   ? "\\u" + hexadecimal(character.code, 4)
                   : bytes;
    });
}

std::string cutTo(const std::string& text, size_t width)
{
    size_t used = 0;
    size_t fits = 0; // bytes that leave a column for the mark
    for (size_t at = 0; at < text.size();) {
        const Utf8Character character = ovra::utf8Character(std::string_view(text).substr(at));
        const int columns = wcwidth(static_cast<wchar_t>(character.code));
        used += columns < 0 ? 1 : static_cast<size_t>(columns);
        at += character.length == 0 ? 1 : character.length;
        fits = used < width ? at : fits;
        if (used > width) {
            return text.substr(0, fits) + "~";
        }
    }
    return text;
}

} // namespace tesselctl

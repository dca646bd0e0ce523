#include "FuzzTarget.h"

#include "LineText.h"

#include <ovra/text/Utf8.h>

using namespace ovra::log;

namespace {

/** What was escaped. */
std::string unescaped(const std::string& line)
{
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\') {
            text += line[i];
            continue;
        }
        mustHold(++i < line.size(), "nothing ends within an escape");
        const size_t simple = std::string("nrt\\\"").find(line[i]);
        if (simple != std::string::npos) {
            text += "\n\r\t\\\""[simple];
        } else {
            mustHold(line[i] == 'x' && i + 2 < line.size(), "an escape is one of those that are documented");
            text += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
            i += 2;
        }
    }
    return text;
}

bool isHarmless(std::string_view line)
{
    while (!line.empty()) {
        const auto character = ovra::utf8Character(line);
        if (character.length == 0 || character.code < 0x20 || character.code == 0x7F ||
            ovra::isObeyed(character.code)) {
            return false;
        }
        line.remove_prefix(character.length);
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text = textOf(data, size);
    for (const Within within : {Within::Text, Within::Quotes, Within::Word}) {
        const std::string line = escaped(text, within);
        mustHold(isHarmless(line), "nothing ends the line, or moves what it shows");
        mustHold(unescaped(line) == text || (text.empty() && within == Within::Word),
                 "the text can be had back");
        mustHold(within != Within::Word || (!line.empty() && line.find(' ') == std::string::npos),
                 "a word is one word");
    }
    std::string quoted = escaped(text, Within::Quotes);
    for (size_t i = 0; i < quoted.size(); ++i) {
        i += quoted[i] == '\\' ? 1 : 0;
        mustHold(i >= quoted.size() || quoted[i] != '"' || quoted[i - 1] == '\\', "no quote ends the value");
    }
    return 0;
}

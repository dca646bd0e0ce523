#ifndef TESSELCTL_TEXT_SHELLWORD_H
#define TESSELCTL_TEXT_SHELLWORD_H

#include <string>

namespace tesselctl {

/// A text as one word of a shell command: what holds other than harmless characters is quoted.
inline std::string shellWord(const std::string& text)
{
    const char* harmless = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.:@%+=,/-";
    if (!text.empty() && text.find_first_not_of(harmless) == std::string::npos) {
        return text;
    }
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

} // namespace tesselctl

#endif

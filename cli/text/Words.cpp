#include "text/Words.h"

#include <algorithm>

namespace tesselctl {
namespace {

constexpr const char* HARMLESS = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.:@%+=,/-";

} // namespace

std::string joined(const std::vector<std::string>& texts, const std::string& between)
{
    std::string all;
    for (const auto& text : texts) {
        all += (&text == &texts.front() ? "" : between) + text;
    }
    return all;
}

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

std::string shellWord(const std::string& text)
{
    if (!text.empty() && text.find_first_not_of(HARMLESS) == std::string::npos) {
        return text;
    }
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

} // namespace tesselctl

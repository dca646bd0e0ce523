#include "HeaderLines.h"

#include <array>
#include <strings.h>

namespace ovra::rest {

namespace {

/// Names that are not written with a capital at the start of each word.
constexpr std::array<std::string_view, 7> UNUSUAL_NAMES = {
    "ETag", "WWW-Authenticate", "Content-MD5", "TE", "X-XSS-Protection", "X-UA-Compatible", "DNT"};

bool equalWithoutCase(std::string_view one, std::string_view other)
{
    return one.size() == other.size() && strncasecmp(one.data(), other.data(), one.size()) == 0;
}

// Not toupper and tolower: the application may have set a locale.
char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::string canonicalHeaderName(std::string_view name)
{
    for (const std::string_view unusual : UNUSUAL_NAMES) {
        if (equalWithoutCase(name, unusual)) {
            return std::string(unusual);
        }
    }
    std::string canonical;
    bool wordStart = true;
    for (const char c : name) {
        canonical += wordStart ? upper(c) : lower(c);
        wordStart = c == '-';
    }
    return canonical;
}

bool isSendableHeaderValue(std::string_view value)
{
    return value.size() <= MOST_VALUE_BYTES &&
           value.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

std::string_view withoutOuterBlanks(std::string_view text)
{
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

void HeaderLines::add(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    if (!m_inHead && line.substr(0, 5) == "HTTP/") {
        constexpr size_t USUAL = 8;
        m_lines.clear();
        m_lines.reserve(USUAL);
        m_inHead = true;
        return;
    }
    if (!m_inHead) {
        return;
    }
    if (line.empty()) {
        m_inHead = false;
        return;
    }
    if (line.front() == ' ' || line.front() == '\t') {
        if (!m_lines.empty()) {
            m_lines.back().append(" ").append(withoutOuterBlanks(line));
        }
        return;
    }
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return;
    }
    m_lines.emplace_back(canonicalHeaderName(withoutOuterBlanks(line.substr(0, colon))));
    m_lines.back().append(": ").append(withoutOuterBlanks(line.substr(colon + 1)));
}

} // namespace ovra::rest

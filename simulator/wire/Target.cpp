#include "wire/Target.h"

#include "base/Codes.h"
#include "base/Text.h"

namespace arraysim {
namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t from = 0;
    for (;;) {
        const std::size_t to = text.find(separator, from);
        parts.push_back(text.substr(from, to - from));
        if (to == std::string::npos) {
            return parts;
        }
        from = to + 1;
    }
}

} // namespace

std::string percentDecode(const std::string& raw, bool plusIsBlank)
{
    std::string text;
    text.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '+' && plusIsBlank) {
            text += ' ';
        } else if (raw[i] != '%') {
            text += raw[i];
        } else {
            const int high = i + 2 < raw.size() ? hexDigit(raw[i + 1]) : -1;
            const int low = i + 2 < raw.size() ? hexDigit(raw[i + 2]) : -1;
            if (high < 0 || low < 0) {
                throw ArrayError(Code::QUERY_MALFORMED, "The request target holds a broken percent escape.");
            }
            text += static_cast<char>(high * 16 + low);
            i += 2;
        }
    }
    return text;
}

Target parseTarget(const std::string& raw)
{
    Target target;
    const std::size_t mark = raw.find('?');
    target.path = raw.substr(0, mark);
    target.query = mark == std::string::npos ? std::string() : raw.substr(mark + 1);
    for (const auto& segment : split(target.path, '/')) {
        target.segments.push_back(percentDecode(segment, false));
    }
    if (!target.segments.empty()) {
        target.segments.erase(target.segments.begin()); // what stands before the leading slash
    }
    for (const auto& pair : split(target.query, '&')) {
        if (pair.empty()) {
            continue; // "/FC_PORT?" and a trailing "&" are ordinary spellings of no more parameters
        }
        const std::size_t equals = pair.find('=');
        if (equals == std::string::npos) {
            throw ArrayError(Code::QUERY_MALFORMED,
                             "The query parameter \"" + printable(pair) + "\" has no value.");
        }
        target.parameters.emplace_back(percentDecode(pair.substr(0, equals), true), pair.substr(equals + 1));
    }
    return target;
}

} // namespace arraysim

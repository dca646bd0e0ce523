#include "wire/Query.h"

#include "base/Codes.h"
#include "base/Text.h"

#include <algorithm>
#include <limits>

namespace arraysim {
namespace {

[[noreturn]] void malformed(const std::string& what)
{
    throw ArrayError(Code::QUERY_MALFORMED, what);
}

/** The length of an encoded or raw blank at position, 0 where there is none. */
std::size_t blankAt(const std::string& raw, std::size_t position)
{
    if (raw.compare(position, 3, "%20") == 0) {
        return 3;
    }
    return position < raw.size() && (raw[position] == ' ' || raw[position] == '+') ? 1 : 0;
}

/** The length of "KEY:" at position, 0 where there is none. */
std::size_t keyAt(const std::string& raw, std::size_t position)
{
    std::size_t end = position;
    while (end < raw.size() &&
           ((raw[end] >= 'A' && raw[end] <= 'Z') || (raw[end] >= '0' && raw[end] <= '9'))) {
        ++end;
    }
    return end > position && end < raw.size() && raw[end] == ':' ? end + 1 - position : 0;
}

/** The length of " and " at position where a condition follows it, else 0. */
std::size_t separatorAt(const std::string& raw, std::size_t position)
{
    const std::size_t before = blankAt(raw, position);
    if (before == 0 || raw.compare(position + before, 3, "and") != 0) {
        return 0;
    }
    const std::size_t after = blankAt(raw, position + before + 3);
    const std::size_t length = before + 3 + after;
    return after != 0 && keyAt(raw, position + length) != 0 ? length : 0;
}

} // namespace

std::vector<Condition> parseFilter(const std::string& raw)
{
    std::vector<Condition> conditions;
    std::size_t at = 0;
    do {
        const std::size_t key = keyAt(raw, at);
        if (key == 0) {
            malformed("A filter is made of KEY:value conditions joined with \" and \".");
        }
        const std::size_t value = at + key;
        std::size_t end = value;
        std::size_t separator = 0;
        while (end < raw.size() && (separator = separatorAt(raw, end)) == 0) {
            ++end;
        }
        conditions.push_back({raw.substr(at, key - 1), percentDecode(raw.substr(value, end - value), true)});
        at = end + separator;
    } while (at < raw.size());
    return conditions;
}

Range parseRange(const std::string& text)
{
    const std::size_t dash = text.find('-');
    if (text.size() >= 5 && text.front() == '[' && text.back() == ']' && dash != std::string::npos) {
        const auto from = decimal(text.substr(1, dash - 1));
        const auto to = decimal(text.substr(dash + 1, text.size() - dash - 2));
        if (from && to && *from <= *to) {
            return {*from, *to};
        }
    }
    malformed("A range is [from-to] with decimal indexes, to not below from.");
}

Query::Query(const Target& target, const std::set<std::string>& allowed)
{
    for (const auto& [key, raw] : target.parameters) {
        if (allowed.count(key) == 0) {
            malformed("The query parameter \"" + printable(key) + "\" is not known here.");
        }
        if (has(key)) {
            malformed("The query parameter \"" + key + "\" is given twice.");
        }
        m_parameters.emplace_back(key, percentDecode(raw, true));
        if (key == "filter") {
            m_selection.filter = parseFilter(raw);
        } else if (key == "range") {
            m_selection.range = parseRange(m_parameters.back().second);
        }
    }
}

bool Query::has(const std::string& key) const
{
    return std::any_of(m_parameters.begin(), m_parameters.end(),
                       [&](const auto& parameter) { return parameter.first == key; });
}

std::string Query::text(const std::string& key) const
{
    for (const auto& [name, value] : m_parameters) {
        if (name == key && !value.empty()) {
            return value;
        }
    }
    throw ArrayError(Code::MEMBER_MISSING, "The query parameter " + key + " is missing or empty.");
}

int Query::number(const std::string& key) const
{
    const auto value = decimal(text(key));
    if (!value || *value > static_cast<unsigned long long>(std::numeric_limits<int>::max())) {
        throw ArrayError(Code::MEMBER_INVALID, "The query parameter " + key + " is not a decimal number.");
    }
    return static_cast<int>(*value);
}

} // namespace arraysim

#pragma once

#include "wire/Target.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace arraysim {

/// One condition of a filter: the record's field KEY has this value.
struct Condition
{
    std::string key;
    std::string value;
};

/// A page of a list: from the first index up to, but without, the second.
struct Range
{
    unsigned long long from = 0;
    unsigned long long to = 0;
};

/// The decoded parameters of a query. Everything that is not understood is refused, because a filter
/// that is silently ignored would answer with objects that were not asked for.
class Query
{
public:
    /// Throws ArrayError (queryMalformed) for a parameter outside allowed, given twice or malformed.
    Query(const Target& target, const std::set<std::string>& allowed);

    bool has(const std::string& key) const;
    /// The parameter's text; throws ArrayError (memberMissing) where it is missing or empty.
    std::string text(const std::string& key) const;
    /// The parameter read as a decimal number; throws ArrayError (memberInvalid).
    int number(const std::string& key) const;

    const std::vector<Condition>& filter() const { return m_filter; }
    const std::optional<Range>& range() const { return m_range; }

private:
    std::vector<std::pair<std::string, std::string>> m_parameters;
    std::vector<Condition> m_filter;
    std::optional<Range> m_range;
};

/// Reads "KEY:value and KEY:value", still percent-encoded: a separator that is encoded in a value
/// stays data, and " and " separates only where another KEY: follows it.
std::vector<Condition> parseFilter(const std::string& raw);

/// Reads "[from-to]" (decoded).
Range parseRange(const std::string& text);

/// A decimal text as a number; nothing where it is not one or does not fit 64 bits.
std::optional<unsigned long long> decimal(const std::string& text);

} // namespace arraysim

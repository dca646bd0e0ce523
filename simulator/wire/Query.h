#ifndef SIMULATOR_WIRE_QUERY_H
#define SIMULATOR_WIRE_QUERY_H

#include "model/Selection.h"
#include "wire/Target.h"

#include <set>
#include <string>
#include <vector>

namespace arraysim {

/**
 * The decoded parameters of a query. Everything that is not understood is refused, because a filter
 * that is silently ignored would answer with objects that were not asked for.
 */
class Query
{
public:
    /** Throws ArrayError (QUERY_MALFORMED) for a parameter outside allowed, given twice or malformed. */
    Query(const Target& target, const std::set<std::string>& allowed);

    bool has(const std::string& key) const;
    /** The parameter's text; throws ArrayError (MEMBER_MISSING) where it is missing or empty. */
    std::string text(const std::string& key) const;
    /** The parameter read as a decimal number; throws ArrayError (MEMBER_INVALID). */
    int number(const std::string& key) const;

    /** What filter and range select. */
    const Selection& selection() const { return m_selection; }

private:
    std::vector<std::pair<std::string, std::string>> m_parameters;
    Selection m_selection;
};

/**
 * Reads "KEY:value and KEY:value", still percent-encoded: a separator that is encoded in a value
 * stays data, and " and " separates only where another KEY: follows it.
 */
std::vector<Condition> parseFilter(const std::string& raw);

/** Reads "[from-to]" (decoded). */
Range parseRange(const std::string& text);

} // namespace arraysim

#endif

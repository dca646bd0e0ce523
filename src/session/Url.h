#ifndef SESSION_URL_H
#define SESSION_URL_H

#include "session/FieldTable.h"

#include <ovra/text/PathData.h>
#include <tessel/Handler.h>

#include <string>

namespace ovra::tessel {

/** A text of the caller's inside a path. */
inline std::string urlValue(const std::string& text)
{
    return pathData(text);
}

/** "TYPE=own&ASSOCIATEOBJTYPE=other&ASSOCIATEOBJID=id" */
std::string associationOf(MOType ownType, unsigned long otherType, const std::string& otherId);
/** The same without a type of its own. */
std::string associatedWith(unsigned long otherType, const std::string& otherId);
/** "ID=group&ASSOCIATEOBJTYPE=type&ASSOCIATEOBJID=id" */
std::string memberOf(const std::string& groupId, MOType type, const std::string& id);

/** "range=[start-end]" behind the separator; empty when count is 0. The end: docs/oddities.md#range */
std::string rangeOf(unsigned long start, unsigned long count, const char* separator);

/** True for a text that would be read as a value and a condition behind it: "a and NAME:b". */
bool addsCondition(const std::string& value);

/**
 * "KEY:value and KEY:value" of those members of its table's filter that differ from what an unset record
 * holds.
 * @param check is called with each text of the caller's.
 */
template <class Record, class Check>
std::string filterOf(const Record& record, Check check)
{
    const Record unset;
    std::string filter;
    const auto consider = [&](auto member) {
        if (record.*member == unset.*member) {
            return;
        }
        filter += filter.empty() ? "" : " and ";
        filter += std::string(keyOf(member)) + ":";
        if constexpr (std::is_same_v<decltype(member), std::string Record::*>) {
            check(record.*member);
            filter += urlValue(record.*member);
        } else {
            filter += std::to_string(record.*member);
        }
    };
    std::apply([&](auto... members) { (consider(members), ...); }, FieldTable<Record>::filter);
    return filter;
}

} // namespace ovra::tessel

#endif

#ifndef SIMULATOR_MODEL_SELECTION_H
#define SIMULATOR_MODEL_SELECTION_H

#include <optional>
#include <string>
#include <vector>

namespace arraysim {

/** One condition of a filter: the record's field KEY has this value. */
struct Condition
{
    std::string key;
    std::string value;
};

/** A page of a list: from the first index up to, but without, the second. */
struct Range
{
    unsigned long long from = 0;
    unsigned long long to = 0;
};

/** Which objects of a type a list shows: those that meet every condition, and of these a page. */
struct Selection
{
    std::vector<Condition> filter;
    std::optional<Range> range; ///< unset: all
};

} // namespace arraysim

#endif

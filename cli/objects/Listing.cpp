#include "objects/Listing.h"

#include <sstream>

namespace tesselctl {

std::vector<Option> pageOptions()
{
    return {{startOption, "N", "begin with the Nth object, counted from 0"},
            {countOption, "N", "list so many objects and no more; without it all of them, page by page"},
            {columnsOption, "NAMES", "columns of the table: names separated by commas, or 'all'"}};
}

std::vector<std::string> chosenColumns(const Context& context, const ObjectKind& kind)
{
    if (!context.has(columnsOption)) {
        return kind.columns;
    }
    if (context.text(columnsOption) == "all") {
        return {"*"};
    }
    std::vector<std::string> columns;
    std::istringstream names(context.text(columnsOption));
    for (std::string name; std::getline(names, name, ',');) {
        columns.push_back(name);
    }
    if (columns.empty()) {
        throw UsageError(std::string(columnsOption) + " names no column");
    }
    return columns;
}

void refuseQuery(const Context& context, const std::vector<Option>& filters, const std::string& source)
{
    std::vector<std::string> names = {startOption, countOption};
    for (const auto& filter : filters) {
        names.push_back(filter.name);
    }
    for (const auto& name : names) {
        if (context.has(name)) {
            throw UsageError(name + " does not go with " + source + ", which names one object at most");
        }
    }
}

} // namespace tesselctl

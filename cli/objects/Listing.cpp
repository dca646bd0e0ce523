#include "objects/Listing.h"

#include <algorithm>
#include <sstream>

namespace tesselctl {

std::vector<Option> pageOptions()
{
    return {{START_OPTION, "N", "begin with the Nth object, counted from 0"},
            {COUNT_OPTION, "N", "list so many objects and no more; without it all of them, page by page"},
            {COLUMNS_OPTION, "NAMES", "columns of the table: names separated by commas, or 'all'"}};
}

std::vector<std::string> chosenColumns(const Context& context, const ObjectKind& kind)
{
    if (!context.has(COLUMNS_OPTION)) {
        return kind.columns;
    }
    if (context.text(COLUMNS_OPTION) == "all") {
        return {"*"};
    }
    std::vector<std::string> columns;
    std::istringstream names(context.text(COLUMNS_OPTION));
    for (std::string name; std::getline(names, name, ',');) {
        columns.push_back(name);
    }
    if (columns.empty()) {
        throw UsageError(std::string(COLUMNS_OPTION) + " names no column");
    }
    return columns;
}

void refuseQuery(const Context& context, const std::vector<Option>& filters, const std::string& source)
{
    std::vector<std::string> names = {START_OPTION, COUNT_OPTION};
    for (const auto& filter : filters) {
        names.push_back(filter.name);
    }
    const auto given =
        std::find_if(names.begin(), names.end(), [&](const std::string& name) { return context.has(name); });
    if (given != names.end()) {
        throw UsageError(*given + " does not go with " + source + ", which names one object at most");
    }
}

} // namespace tesselctl

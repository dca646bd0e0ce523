#ifndef OBJECTS_LISTING_H
#define OBJECTS_LISTING_H

#include "objects/ObjectKind.h"
#include "output/Progress.h"

#include <climits>
#include <optional>
#include <set>

namespace tesselctl {

/** One way to list: the objects associated with what the option names. */
template <class Record, class Query>
struct Source
{
    Option option; ///< without a name: all objects of the array
    std::function<std::vector<Record>(Session&, const std::string& id, Query&)> read;
    bool paged = true; ///< filters and pages count
};

template <class Record, class Query, class Handler>
Source<Record, Query> by(const char* option, const char* value, const char* of,
                         std::vector<Record> (Handler::*list)(const std::string&, Query&))
{
    return {{option, value, std::string("those of this ") + of},
            [=](Session& session, const std::string& id, Query& query) {
                return (session.handler<Handler>().*list)(id, query);
            }};
}

/** An association that holds at most one object and takes no query. */
template <class Query, class Record, class Handler>
Source<Record, Query> byOne(const char* option, const char* value, const char* of,
                            Record (Handler::*get)(const std::string&))
{
    return {{option, value, std::string("the one of this ") + of},
            [=](Session& session, const std::string& id, Query&) {
                const Record record = (session.handler<Handler>().*get)(id);
                return record.ID.empty() ? std::vector<Record>{} : std::vector<Record>{record};
            },
            false};
}

template <class Record, class Query, class Handler>
Source<Record, Query> everything(std::vector<Record> (Handler::*list)(Query&))
{
    return {Option{}, [=](Session& session, const std::string&, Query& query) {
                return (session.handler<Handler>().*list)(query);
            }};
}

/**
 * Reads a long list page by page. An object that two pages hold, because the list moved or because the array
 * counts the end of a range in, is taken once; a page that brings nothing new ends the list.
 */
template <class Record, class Query, class ReadPage>
std::vector<Record> readAllPages(Query query, const std::string& title, ReadPage readPage)
{
    const unsigned long pageSize = 100;
    std::vector<Record> all;
    std::set<std::string> seen;
    Progress progress("reading " + title + "s");
    query.count = pageSize;
    for (bool more = true; more; query.start += pageSize) {
        const std::vector<Record> page = readPage(query);
        more = false;
        for (const auto& record : page) {
            if (seen.insert(record.ID).second) {
                all.push_back(record);
                more = page.size() >= pageSize;
            }
        }
        progress.update(std::to_string(all.size()) + " so far");
    }
    return all;
}

constexpr const char* START_OPTION = "--start";
constexpr const char* COUNT_OPTION = "--count";
constexpr const char* COLUMNS_OPTION = "--columns";

/** --start, --count and --columns. */
std::vector<Option> pageOptions();

/** The columns that the command line asks for, or those that the kind has; "*" for "all". */
std::vector<std::string> chosenColumns(const Context& context, const ObjectKind& kind);

/** Throws when an option is given that a list without a query cannot follow. */
void refuseQuery(const Context& context, const std::vector<Option>& filters, const std::string& source);

/** "list": by one of the sources, with filters, and either one page or everything. */
template <class Record, class Query>
Command listCommand(const ObjectKind& kind, const std::vector<Source<Record, Query>>& sources,
                    const Inputs<Record>& filters)
{
    Command command{kind.command("list"), "list " + kind.title + "s", {}, {}, {}, nullptr};
    for (const auto& source : sources) {
        if (!source.option.name.empty()) {
            command.options.push_back(source.option);
            command.exactlyOneOf.push_back(source.option.name);
        }
    }
    for (const auto& options : {optionsOf(filters), pageOptions()}) {
        command.options.insert(command.options.end(), options.begin(), options.end());
    }
    command.run = [=](Context& context) {
        const auto source = std::find_if(sources.begin(), sources.end(), [&](const auto& candidate) {
            return candidate.option.name.empty() || context.has(candidate.option.name);
        });
        const std::string& sourceName = source->option.name;
        if (!source->paged) {
            refuseQuery(context, optionsOf(filters), sourceName);
        }
        checkColumns(fieldsOf(Record()), chosenColumns(context, kind));
        Query query;
        apply(filters, context.values(), query.filter);
        query.start = parseNumber(START_OPTION, context.text(START_OPTION, "0"), 0, ULONG_MAX / 2);
        query.count = parseNumber(COUNT_OPTION, context.text(COUNT_OPTION, "0"), 0, ULONG_MAX / 2);
        const auto read = [&](Query& page) {
            return source->read(context.session(), context.text(sourceName), page);
        };
        const bool onePage = context.has(COUNT_OPTION) || !source->paged;
        std::vector<Row> rows;
        for (const auto& record : onePage ? read(query) : readAllPages<Record>(query, kind.title, read)) {
            rows.push_back(fieldsOf(record));
        }
        context.printer().records(rows, chosenColumns(context, kind), kind.title);
    };
    return command;
}

} // namespace tesselctl

#endif

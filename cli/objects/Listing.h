#ifndef OBJECTS_LISTING_H
#define OBJECTS_LISTING_H

#include "objects/ObjectKind.h"
#include "output/Progress.h"
#include "output/RecordList.h"

#include <algorithm>
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
    /** " of at most 512", where the array can tell; costs requests of its own. */
    std::function<std::string(Session&, const std::string& id)> total = nullptr;
};

template <class Record, class Query, class Handler>
Source<Record, Query> by(const char* option, const char* value, const char* of,
                         std::vector<Record> (Handler::*list)(const std::string&, Query&))
{
    return {{option, value, std::string("those of this ") + of},
            [=](Session& session, const std::string& id, Query& query) {
                return withObjects(session, {{of, id}},
                                   [&] { return (session.handler<Handler>().*list)(id, query); });
            }};
}

/** An association that holds at most one object and takes no query. */
template <class Query, class Record, class Handler>
Source<Record, Query> byOne(const char* option, const char* value, const char* of,
                            Record (Handler::*get)(const std::string&))
{
    return {{option, value, std::string("the one of this ") + of},
            [=](Session& session, const std::string& id, Query&) {
                const Record record =
                    withObjects(session, {{of, id}}, [&] { return (session.handler<Handler>().*get)(id); });
                return record.ID.empty() ? std::vector<Record>{} : std::vector<Record>{record};
            },
            false};
}

/** A LUN group tells how many LUNs and snapshots it holds. */
template <class Record, class Query>
Source<Record, Query> ofGroup(Source<Record, Query> source)
{
    source.total = [](Session& session, const std::string& id) {
        return " of at most " + std::to_string(session.handler<CLunGroupHandler>().getObjNOFromLunGroup(id));
    };
    return source;
}

template <class Record, class Query, class Handler>
Source<Record, Query> everything(std::vector<Record> (Handler::*list)(Query&))
{
    return {Option{}, [=](Session& session, const std::string&, Query& query) {
                return (session.handler<Handler>().*list)(query);
            }};
}

/**
 * Reads a list page by page to its end, or to `limit` objects, and hands each page on as soon as it is there:
 * by the rules of ovra::tessel::Pages, as to where a page begins and which is the last one.
 */
template <class Record, class Query, class ReadPage, class Use>
void readPages(Query query, size_t limit, ReadPage readPage, Use use)
{
    constexpr size_t PAGE_SIZE = 100;
    std::set<std::string> seen;
    bool sawFullPage = false;
    for (bool more = limit > 0; more;) {
        query.count = std::min(PAGE_SIZE, limit - seen.size());
        const std::vector<Record> page = readPage(query);
        query.start += page.size();
        const bool isShort = page.size() < query.count;
        sawFullPage = sawFullPage || !isShort;
        std::vector<Record> fresh;
        for (const auto& record : page) {
            if (seen.size() < limit && seen.insert(record.ID).second) {
                fresh.push_back(record);
            }
        }
        more = !fresh.empty() && !(isShort && sawFullPage) && seen.size() < limit;
        use(fresh, seen.size());
    }
}

/** Everything that a list operation of the SDK gives for one object. */
template <class Handler, class Record, class Query>
std::vector<Record> listed(Session& session, const char* title,
                           std::vector<Record> (Handler::*list)(const std::string&, Query&),
                           const std::string& id)
{
    std::vector<Record> all;
    Progress progress(std::string("reading ") + title + "s");
    readPages<Record>(
        Query(), std::numeric_limits<size_t>::max(),
        [&](Query& page) { return (session.handler<Handler>().*list)(id, page); },
        [&](const std::vector<Record>& page, size_t soFar) {
            all.insert(all.end(), page.begin(), page.end());
            progress.update(std::to_string(soFar) + " so far");
        });
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
        RecordList list(context.printer(), chosenColumns(context, kind), fieldsOf(Record()));
        Query query;
        apply(filters, context.values(), query.filter);
        query.start = parseNumber(START_OPTION, context.text(START_OPTION, "0"), 0, ULONG_MAX / 2);
        const size_t limit = context.has(COUNT_OPTION)
                                 ? parseNumber(COUNT_OPTION, context.text(COUNT_OPTION), 0, ULONG_MAX / 2)
                                 : std::numeric_limits<size_t>::max();
        Progress progress("reading " + kind.title + "s");
        const std::string id = context.text(sourceName);
        const std::string total =
            source->total && progress.isShown() ? source->total(context.session(), id) : "";
        const auto read = [&](Query& page) { return source->read(context.session(), id, page); };
        const auto use = [&](const std::vector<Record>& page, size_t soFar) {
            std::vector<Row> rows;
            rows.reserve(page.size());
            for (const auto& record : page) {
                rows.push_back(fieldsOf(record));
            }
            progress.update(std::to_string(soFar) + " so far" + total, [&] { list.add(rows); });
        };
        if (source->paged) {
            readPages<Record>(query, limit, read, use);
        } else {
            const auto all = read(query);
            use(all, all.size());
        }
        list.end(kind.title);
    };
    return command;
}

} // namespace tesselctl

#endif

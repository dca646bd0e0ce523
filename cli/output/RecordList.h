#ifndef OUTPUT_RECORDLIST_H
#define OUTPUT_RECORDLIST_H

#include "output/Printer.h"
#include "output/Table.h"

#include <string>
#include <vector>

namespace tesselctl {

/** Writes the records of a list as they come: lines of a table, or elements of a JSON array. */
class RecordList
{
public:
    /**
     * @param columns of the table; "*" alone: every field.
     * @param example a record with the fields that all have. Throws UsageError when it lacks a column.
     */
    RecordList(Printer& printer, const std::vector<std::string>& columns, const Row& example);

    void add(const std::vector<Row>& rows);
    /** The end of the list; a list that fails before has none, so that its JSON cannot be taken for whole. */
    void end(const std::string& title);

private:
    void addJson(const Row& row);

    Printer& m_printer;
    std::vector<std::string> m_columns;
    Table m_table;
    bool m_isEmpty = true;
};

} // namespace tesselctl

#endif

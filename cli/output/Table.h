#ifndef OUTPUT_TABLE_H
#define OUTPUT_TABLE_H

#include <string>
#include <vector>

namespace tesselctl {

/** One line of a table. */
using TableLine = std::vector<std::string>;

/**
 * Printable texts in aligned columns, which may come in parts. Columns that hold nothing but numbers stand to
 * the right. On a terminal that is too narrow names and descriptions are cut, nothing else.
 */
class Table
{
public:
    explicit Table(TableLine titles) : m_titles(std::move(titles)) {}

    /** The text of the next lines, after the titles where they are the first. */
    std::string part(const std::vector<TableLine>& lines);

private:
    /** What a part leaves to the next, so that columns stay where they are. */
    struct Column
    {
        double width = 0; ///< 0: not known yet
        bool right = false;
    };

    TableLine m_titles;
    std::vector<Column> m_columns;
};

} // namespace tesselctl

#endif

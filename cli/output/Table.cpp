#include "output/Table.h"

#include "output/SmartTable.h"

#include <algorithm>
#include <array>

namespace tesselctl {
namespace {

constexpr std::array<const char*, 3> CUT_WHEN_NARROW = {"NAME", "DESCRIPTION", "LOCATION"};

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

bool holdsNumbers(const std::vector<TableLine>& lines, size_t column)
{
    return std::all_of(lines.begin(), lines.end(),
                       [&](const TableLine& line) { return isNumber(line[column]) || line[column] == "-"; });
}

} // namespace

std::string Table::part(const std::vector<TableLine>& lines)
{
    const bool isFirst = m_columns.empty();
    m_columns.resize(m_titles.size());
    SmartTable table;
    scols_table_enable_noheadings(table.get(), isFirst ? 0 : 1);
    scols_table_set_column_separator(table.get(), "  ");
    for (size_t i = 0; i < m_titles.size(); ++i) {
        m_columns[i].right = isFirst ? holdsNumbers(lines, i) : m_columns[i].right;
        const bool yields =
            std::find(CUT_WHEN_NARROW.begin(), CUT_WHEN_NARROW.end(), m_titles[i]) != CUT_WHEN_NARROW.end();
        // A width that is kept counts only where it exceeds that of the title.
        scols_table_new_column(table.get(), isFirst ? m_titles[i].c_str() : "", m_columns[i].width,
                               (m_columns[i].right ? SCOLS_FL_RIGHT : 0) | (yields ? SCOLS_FL_TRUNC : 0) |
                                   (isFirst ? 0 : SCOLS_FL_STRICTWIDTH));
    }
    for (const auto& line : lines) {
        table.addLine(nullptr, line);
    }
    std::string text = table.text();
    for (size_t i = 0; i < m_titles.size(); ++i) {
        const auto width = scols_column_get_width(scols_table_get_column(table.get(), i));
        m_columns[i].width = std::max(m_columns[i].width, static_cast<double>(width));
    }
    return text;
}

} // namespace tesselctl

#include "output/RecordList.h"

#include "kernel/Failure.h"
#include "text/Words.h"

#include <algorithm>

namespace tesselctl {
namespace {

std::vector<std::string> namesOf(const Row& row)
{
    std::vector<std::string> names;
    for (const auto& field : row) {
        names.push_back(field.name);
    }
    return names;
}

const RecordField& fieldOf(const Row& row, const std::string& name)
{
    const auto found =
        std::find_if(row.begin(), row.end(), [&](const RecordField& f) { return f.name == name; });
    if (found == row.end()) {
        throw UsageError("there is no column '" + name + "'; choose from " + joined(namesOf(row)));
    }
    return *found;
}

} // namespace

RecordList::RecordList(Printer& printer, const std::vector<std::string>& columns, const Row& example)
    : m_printer(printer), m_columns(columns == std::vector<std::string>{"*"} ? namesOf(example) : columns),
      m_table(m_columns)
{
    for (const auto& column : m_columns) {
        fieldOf(example, column);
    }
}

void RecordList::add(const std::vector<Row>& rows)
{
    std::vector<TableLine> lines;
    for (const auto& row : rows) {
        if (m_printer.isJson()) {
            addJson(row);
            continue;
        }
        TableLine& line = lines.emplace_back();
        for (const auto& column : m_columns) {
            line.push_back(humanValue(fieldOf(row, column), true));
        }
    }
    if (!lines.empty()) {
        m_printer.write(m_table.part(lines));
    }
    m_isEmpty = m_isEmpty && rows.empty();
}

void RecordList::addJson(const Row& row)
{
    std::string text = jsonText(toJson(row), true);
    for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
        text.insert(at + 1, "  ");
    }
    m_printer.write((m_isEmpty ? "[\n  " : ",\n  ") + text);
    m_isEmpty = false;
}

void RecordList::end(const std::string& title)
{
    if (m_printer.isJson()) {
        m_printer.write(m_isEmpty ? "[]\n" : "\n]\n");
    } else if (m_isEmpty) {
        m_printer.write("No " + title + "s.\n");
    }
}

} // namespace tesselctl

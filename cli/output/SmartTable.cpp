#include "output/SmartTable.h"

#include "text/Display.h"

#include <cstdlib>
#include <new>

namespace tesselctl {

SmartTable::SmartTable() : m_table(scols_new_table(), scols_unref_table)
{
    if (!m_table) {
        throw std::bad_alloc();
    }
    // The library would escape the backslashes of texts that are escaped already.
    scols_table_enable_noencoding(get(), 1);
}

libscols_line* SmartTable::addLine(libscols_line* parent, const std::vector<std::string>& cells)
{
    libscols_line* line = scols_table_new_line(get(), parent);
    for (size_t i = 0; i < cells.size(); ++i) {
        scols_line_set_data(line, i, inLocale(cells[i]).c_str());
    }
    return line;
}

std::string SmartTable::text() const
{
    char* data = nullptr;
    const int failed = scols_print_table_to_string(get(), &data);
    const std::unique_ptr<char, decltype(&std::free)> owner(data, std::free);
    if (failed != 0 || data == nullptr) {
        throw std::bad_alloc(); // all that can fail here
    }
    return std::string(data) + "\n";
}

} // namespace tesselctl

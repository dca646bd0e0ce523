#ifndef OUTPUT_SMARTTABLE_H
#define OUTPUT_SMARTTABLE_H

#include <libsmartcols/libsmartcols.h>

#include <memory>
#include <string>
#include <vector>

namespace tesselctl {

/** A table of libsmartcols that goes with this object. Its texts are to be printable; see printable(). */
class SmartTable
{
public:
    SmartTable();

    libscols_table* get() const { return m_table.get(); }
    libscols_line* addLine(libscols_line* parent, const std::vector<std::string>& cells);

    /** Everything laid out, every line with its end. Without a terminal on standard output nothing is cut. */
    std::string text() const;

private:
    std::unique_ptr<libscols_table, decltype(&scols_unref_table)> m_table;
};

} // namespace tesselctl

#endif

#ifndef OUTPUT_TABLE_H
#define OUTPUT_TABLE_H

#include <string>
#include <vector>

namespace tesselctl {

/** One line of a table; the first line holds the titles. */
using TableLine = std::vector<std::string>;

/**
 * Lays lines out in aligned columns of printable text. Columns that hold nothing but numbers stand to the
 * right.
 * @param width columns of the terminal, 0 for no limit; wider tables get their widest columns cut.
 */
std::string layOut(const std::vector<TableLine>& lines, size_t width);

/** Columns of the terminal on standard output; 0 when it is none. */
size_t terminalWidth();

} // namespace tesselctl

#endif

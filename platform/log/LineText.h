#ifndef OVRA_LOG_LINETEXT_H
#define OVRA_LOG_LINETEXT_H

#include <string>
#include <string_view>

namespace ovra::log {

/** What beside control bytes is escaped. */
enum class Within
{
    Text,   ///< the rest of a line: nothing more
    Quotes, ///< a value in double quotes: these too
    Word    ///< a field that ends at a blank: blanks too, and an empty one is written "-"
};

/**
 * The text with everything escaped that could end a line, move a terminal's cursor or show the line other
 * than it is: control bytes and bytes that are not UTF-8 as \n, \r, \t or \xHH, and \ itself as \\.
 */
std::string escaped(std::string_view text, Within within);

/** The same, put behind a line that was begun. */
void appendEscaped(std::string& line, std::string_view text, Within within);

} // namespace ovra::log

#endif

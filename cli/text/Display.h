#ifndef TEXT_DISPLAY_H
#define TEXT_DISPLAY_H

#include <cstddef>
#include <string>

namespace tesselctl {

/**
 * A text of the array or the host made safe for a terminal: control characters, bytes that are not UTF-8 and
 * characters that turn the writing direction become \xHH or \u{HHHH}, so that a name cannot steer the
 * terminal.
 */
std::string printable(const std::string& text);

/** The same for JSON, which has escapes of its own: only bytes that are not UTF-8 are replaced. */
std::string validUtf8(const std::string& text);

/** Columns that a printable text takes on a terminal. */
size_t displayWidth(const std::string& text);

/**
 * The text cut to `width` columns; what was cut ends in "~" (or an ellipsis where the terminal shows one).
 */
std::string cutTo(const std::string& text, size_t width);

/** Whether the locale of this process writes UTF-8. */
bool isUtf8Terminal();

} // namespace tesselctl

#endif

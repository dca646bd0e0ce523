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

/** A printable text as the locale of this process can show it: without UTF-8 only ASCII stays as it is. */
std::string inLocale(const std::string& text);

/** Bytes that are not UTF-8 are replaced; for JSON, which has escapes of its own. */
std::string validUtf8(const std::string& text);

/** JSON in which control characters and those that turn the writing direction are escapes. */
std::string plainJson(const std::string& json);

/** A printable text cut to `width` columns of a terminal; what was cut ends in "~". */
std::string cutTo(const std::string& text, size_t width);

} // namespace tesselctl

#endif

#ifndef SIMULATOR_BASE_TEXT_H
#define SIMULATOR_BASE_TEXT_H

#include <optional>
#include <string>

namespace arraysim {

/** A decimal text as a number; nothing where it is not one or does not fit 64 bits. */
std::optional<unsigned long long> decimal(const std::string& text);

/** A text as it may stand in a line of a log: control bytes are shown as escapes. */
std::string printable(const std::string& text);

} // namespace arraysim

#endif

#ifndef REFERENCE_REFERENCE_H
#define REFERENCE_REFERENCE_H

#include <string>

namespace tesselctl {

/** The completion script for bash, from the command table. */
std::string bashCompletion();

/** The list of commands and options for the manual page, as mdoc, from the command table. */
std::string manualCommands();

} // namespace tesselctl

#endif

#ifndef OVRA_LOG_DIRECTORIES_H
#define OVRA_LOG_DIRECTORIES_H

#include <string>

namespace ovra::log {

/** Makes a directory with those above it that are missing; 0, or an errno value. */
int makeDirectories(const std::string& path);

/**
 * The user's own log directory: $XDG_STATE_HOME/ovra/logs, by default ~/.local/state/ovra/logs with the home
 * of the account. Empty when the account has none.
 */
std::string userLogDirectory();

} // namespace ovra::log

#endif

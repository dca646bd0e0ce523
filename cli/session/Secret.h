#ifndef SESSION_SECRET_H
#define SESSION_SECRET_H

#include <string>

namespace tesselctl {

/** The first line of a file that holds a secret. Throws UsageError when it cannot be read or is empty. */
std::string secretFromFile(const std::string& option, const std::string& path);

/** An environment variable; empty when it is not set. */
std::string environment(const char* name);

/**
 * Asks for a secret on the terminal without echo. The terminal gets its echo back whatever ends the question,
 * signals included. Throws UsageError when there is no terminal or nothing was typed.
 */
std::string askSecret(const std::string& question);

} // namespace tesselctl

#endif

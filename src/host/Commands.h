#ifndef HOST_COMMANDS_H
#define HOST_COMMANDS_H

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

// Shell commands. Where the call at work has a limit they end with it, and with all that they have started:
// CallEnded is thrown then. What is ended from the keyboard throws Interruption.

namespace ovra::tessel {

/** Runs one; the status that system() gives, -1 when how it ended is not known. */
int runCommand(const std::string& command);

/** The same within a time; -1 too when it has not ended by then, and it is left to itself. */
int runWithin(std::chrono::seconds limit, const std::string& command);

/**
 * popen() of what one prints, for the calling thread alone: the stream has no lock, with which a thread that
 * waits for a tool that hangs would keep the process from its end.
 */
std::FILE* openCommand(const std::string& command);

/** All that a command has printed. */
struct Printed
{
    std::string text;
    int status; ///< as pclose() gives it
};

/** Runs one to its end, on a thread of its own; none when it could not be started. */
std::optional<Printed> printedBy(const std::string& command);

} // namespace ovra::tessel

#endif

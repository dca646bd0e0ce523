#ifndef SIMULATOR_COMMAND_H
#define SIMULATOR_COMMAND_H

#include <csignal>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace arraysim {

/** The end of a command: its exit status, or the signal that ended it. */
struct CommandEnd
{
    int status = 0;
    int signal = 0; ///< 0: it ended by itself
};

/** A command that runs beside the array, whose end is the reason to stop. */
class Command
{
public:
    using Environment = std::map<std::string, std::string>; ///< an empty value takes the variable away

    /** Statuses of a command that does not run, as shells and env(1) have them. */
    static constexpr int NO_ARRAY = 125;
    static constexpr int NOT_EXECUTABLE = 126;
    static constexpr int NOT_FOUND = 127;

    /** Call it before the first thread starts: blocks SIGCHLD and the signals that stop in all of them. */
    Command();
    /**
     * Runs it with these variables beside the ones of this process, and waits for its end. The signals that
     * would have stopped this process are handed on to it. A command that cannot be run is told on standard
     * error.
     */
    CommandEnd run(const std::vector<std::string>& words, const Environment& environment) const;
    /** Ends this process as the command ended. */
    [[noreturn]] static void endLike(const CommandEnd& end);

private:
    int start(pid_t& pid, const std::vector<std::string>& words, const Environment& environment) const;

    sigset_t m_before;  ///< the mask of the caller, which the command gets
    bool m_pipeDefault; ///< whether SIGPIPE had its default before it was ignored
};

} // namespace arraysim

#endif

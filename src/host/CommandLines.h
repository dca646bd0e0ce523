#ifndef HOST_COMMANDLINES_H
#define HOST_COMMANDLINES_H

#include "host/ChildStatus.h"
#include "host/Commands.h"
#include "session/FewLines.h"

#include <cstdio>
#include <optional>
#include <string>

namespace ovra::tessel {

/**
 * The lines that a shell command prints.
 *
 * A line that cannot be taken as it stands (too long for the buffer, bytes that no text has, not ended by a
 * newline unless the command has succeeded) comes as an empty one, never as a piece of itself, and is told in
 * the run log.
 */
class CommandLines
{
public:
    explicit CommandLines(const std::string& command);
    ~CommandLines();
    CommandLines(const CommandLines&) = delete;
    CommandLines& operator=(const CommandLines&) = delete;

    /** False when the command could not be started. */
    bool started() const { return m_output != nullptr; }

    /**
     * Reads the next line, without its newline; false at the end. Throws Interruption there when the command
     * was ended from the keyboard. Where the call has a limit the command has ended before the first line is
     * read, and the constructor throws CallEnded.
     */
    bool next(std::string& line);

    /** Says in the run log when the command, which has ended, could not be run at all: it has listed nothing.
     */
    void sayIfNotRun() const;

private:
    std::string readPiece() const;
    int end();
    void drop(std::string& line);

    const ChildStatus m_children;
    const std::string m_command;
    FewLines m_dropped{OS_LOG_WARN};
    std::optional<Printed> m_printed; ///< of one that was run to its end before
    std::FILE* m_output = nullptr;
    std::optional<int> m_status; ///< of a command that has ended
};

} // namespace ovra::tessel

#endif

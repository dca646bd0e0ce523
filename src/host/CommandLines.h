#ifndef HOST_COMMANDLINES_H
#define HOST_COMMANDLINES_H

#include <cstdio>
#include <string>

namespace ovra::tessel {

/** Runs a shell command; the status that system() gives. */
int runCommand(const std::string& command);

/**
 * The lines that a shell command prints.
 *
 * A line that cannot be taken as it stands (too long for the buffer, bytes that no text has, not ended by a
 * newline because the command died) comes as an empty one, never as a piece of itself.
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

    /** Reads the next line, without its newline; false at the end. */
    bool next(std::string& line);

private:
    std::FILE* m_output;
};

} // namespace ovra::tessel

#endif

#ifndef ATTACH_TOOLOUTPUT_H
#define ATTACH_TOOLOUTPUT_H

#include <fcntl.h>
#include <unistd.h>

namespace tesselctl {

/**
 * While it lives, standard output is standard error: what the host's tools print during a scan, the listing
 * of temporary devices for one, is no part of the answer.
 */
class ToolOutput
{
public:
    ToolOutput() : m_answer(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        if (m_answer >= 0) {
            dup2(STDERR_FILENO, STDOUT_FILENO);
        }
    }
    ~ToolOutput()
    {
        if (m_answer >= 0) {
            dup2(m_answer, STDOUT_FILENO);
            close(m_answer);
        }
    }
    ToolOutput(const ToolOutput&) = delete;
    ToolOutput& operator=(const ToolOutput&) = delete;

private:
    int m_answer;
};

} // namespace tesselctl

#endif

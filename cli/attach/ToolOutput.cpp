#include "attach/ToolOutput.h"

#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace tesselctl {
namespace {

void moveBack(int from, int to)
{
    if (from >= 0) {
        dup2(from, to);
        close(from);
    }
}

} // namespace

ToolOutput::ToolOutput()
    : m_kept(memfd_create("output of the host's tools", MFD_CLOEXEC)),
      m_output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)), m_error(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
{
    if (m_kept >= 0 && m_output >= 0 && m_error >= 0) {
        dup2(m_kept, STDOUT_FILENO);
        dup2(m_kept, STDERR_FILENO);
    }
}

void ToolOutput::restore()
{
    moveBack(m_output, STDOUT_FILENO);
    moveBack(m_error, STDERR_FILENO);
    m_output = m_error = -1;
    if (m_kept >= 0) {
        close(m_kept);
    }
    m_kept = -1;
}

void ToolOutput::tell(const Printer& printer)
{
    // A descriptor of its own, which begins at the beginning.
    std::ifstream kept("/proc/self/fd/" + std::to_string(m_kept));
    restore();
    for (std::string line; std::getline(kept, line);) {
        printer.note(line);
    }
}

} // namespace tesselctl

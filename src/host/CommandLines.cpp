#include "host/CommandLines.h"

#include "host/Interruption.h"
#include "session/CallsAtWork.h"
#include "session/Log.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <sys/wait.h>

namespace ovra::tessel {

namespace {

constexpr size_t LINE_SIZE = 1024;
constexpr int CANNOT_BE_RUN = 126; // exit code of a shell, as is 127: not found
constexpr size_t TOLD = 100;       // characters of a line that is left out

bool isText(const std::string& line)
{
    return std::none_of(line.begin(), line.end(), [](unsigned char byte) {
        return (byte < ' ' && byte != '\t') ||
               byte == 0x7f; // other bytes occur in the dates of some languages
    });
}

} // namespace

CommandLines::CommandLines(const std::string& command) : m_command(command)
{
    if (!isLimited()) {
        m_output = openCommand(command);
        return;
    }
    m_printed = printedBy(command);
    if (m_printed) {
        m_output = fmemopen(m_printed->text.data(), m_printed->text.size(), "r");
    }
}

CommandLines::~CommandLines()
{
    if (started()) {
        end();
    }
    if (m_dropped.rest() != 0) {
        COMMLOG(OS_LOG_WARN, "%u more lines of [%s] are not looked at", m_dropped.rest(), m_command.c_str());
    }
}

int CommandLines::end()
{
    if (!m_status) {
        m_status = m_printed ? m_printed->status : pclose(m_output);
        if (m_printed) {
            std::fclose(m_output);
        }
    }
    return *m_status;
}

void CommandLines::sayIfNotRun() const
{
    const int status = m_status.value_or(0);
    if (WIFEXITED(status) && WEXITSTATUS(status) >= CANNOT_BE_RUN) {
        COMMLOG(OS_LOG_WARN, "[%s] cannot be run: it is not known which devices there are.",
                m_command.c_str());
    }
}

/** Reads as much of a line as the buffer of a line holds; empty at the end. */
std::string CommandLines::readPiece() const
{
    std::string piece;
    while (!m_status && piece.size() < LINE_SIZE - 1 && (piece.empty() || piece.back() != '\n')) {
        const int c = std::getc(m_output);
        if (c != EOF) {
            piece += static_cast<char>(c);
        } else if (std::ferror(m_output) != 0 && errno == EINTR) { // a signal of the application
            std::clearerr(m_output);
        } else {
            break;
        }
    }
    return piece;
}

void CommandLines::drop(std::string& line)
{
    COMMLOG(m_dropped.next(), "a line of [%s] is not looked at, it is not a whole line of text: [%s]",
            m_command.c_str(), line.substr(0, TOLD).c_str());
    line.clear();
}

bool CommandLines::next(std::string& line)
{
    line = readPiece();
    std::string last = line;
    while (!last.empty() && last.back() != '\n') {
        last = readPiece();
    }
    const bool atEnd = last.empty();
    if (atEnd && end() != -1) {
        throwIfInterrupted(*m_status);
    }
    if (line.empty()) {
        return false;
    }
    const bool isWhole = line.back() == '\n' || (atEnd && line.size() < LINE_SIZE - 1 && *m_status == 0);
    if (line.back() == '\n') {
        line.pop_back();
    }
    if (!isWhole || !isText(line)) {
        drop(line);
    }
    return true;
}

} // namespace ovra::tessel

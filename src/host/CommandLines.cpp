#include "host/CommandLines.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace ovra::tessel {

namespace {

const size_t LINE_SIZE = 1024;
const char UNWRITTEN = 1;

/** Reads as much of a line as the buffer holds, zero bytes included; empty at the end. */
std::string readPiece(std::FILE* output)
{
    char buffer[LINE_SIZE];
    std::memset(buffer, UNWRITTEN, sizeof(buffer));
    if (std::fgets(buffer, sizeof(buffer), output) == nullptr) {
        return std::string();
    }
    // The last zero byte is the terminator; those before it were printed by the command.
    const char* const terminator = static_cast<const char*>(memrchr(buffer, 0, sizeof(buffer)));
    return std::string(buffer, static_cast<size_t>(terminator - buffer));
}

bool isText(const std::string& line)
{
    return std::none_of(line.begin(), line.end(), [](unsigned char byte) {
        return (byte < ' ' && byte != '\t') ||
               byte == 0x7f; // other bytes occur in the dates of some languages
    });
}

} // namespace

int runCommand(const std::string& command)
{
    return system(command.c_str());
}

CommandLines::CommandLines(const std::string& command) : m_output(popen(command.c_str(), "r")) {}

CommandLines::~CommandLines()
{
    if (started()) {
        pclose(m_output);
    }
}

bool CommandLines::next(std::string& line)
{
    line = readPiece(m_output);
    if (line.empty()) {
        return false;
    }
    if (line.back() == '\n') {
        line.pop_back();
        if (!isText(line)) {
            line.clear();
        }
        return true;
    }
    for (std::string rest = line; !rest.empty() && rest.back() != '\n';) {
        rest = readPiece(m_output);
    }
    line.clear();
    return true;
}

} // namespace ovra::tessel

#include "Servers.h"

#include <array>
#include <fcntl.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {
namespace {

/** bench_server stands beside this program. */
std::string program()
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    const std::string self(path.data(), static_cast<size_t>(length));
    return self.substr(0, self.rfind('/')) + "/bench_server";
}

std::string lineOf(std::FILE* stream)
{
    std::string line;
    for (int c = std::fgetc(stream); c != EOF && c != '\n'; c = std::fgetc(stream)) {
        line += static_cast<char>(c);
    }
    return line;
}

} // namespace

Servers::Servers(unsigned count, unsigned milliseconds)
{
    const std::array<std::string, 3> words = {program(), std::to_string(count), std::to_string(milliseconds)};
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe for the server");
    }
    m_process = fork();
    if (m_process == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        execl(words[0].c_str(), words[0].c_str(), words[1].c_str(), words[2].c_str(), nullptr);
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    m_to = fdopen(in[1], "w");
    m_from = fdopen(out[0], "r");
    std::istringstream line(lineOf(m_from));
    for (std::string word; line >> word;) {
        m_all.push_back({word, ""});
    }
    if (m_all.size() != count + 1) {
        throw std::runtime_error(words[0] + " does not start");
    }
    for (Server& server : m_all) {
        server.caFile = m_all.back().port; // the last word
    }
    m_all.pop_back();
}

Servers::~Servers()
{
    std::fclose(m_to);
    std::fclose(m_from);
    waitpid(m_process, nullptr, 0);
}

unsigned long Servers::handshakes()
{
    std::fputs("handshakes\n", m_to);
    std::fflush(m_to);
    return std::stoul(lineOf(m_from));
}

} // namespace bench

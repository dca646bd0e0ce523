#include "StateDir.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace arraysim {
namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

} // namespace

StateDir::StateDir(const std::string& path) : m_path(path)
{
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        fail("cannot make the state directory " + path);
    }
    if (char* absolute = ::realpath(path.c_str(), nullptr)) {
        m_path = absolute;
        std::free(absolute);
    }
    m_lock = ::open(file("lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (m_lock < 0) {
        fail("cannot write in the state directory " + path);
    }
    if (::flock(m_lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(m_lock);
        throw std::runtime_error("the state directory " + path +
                                 " is in use by another process: choose another with --state-dir");
    }
}

std::unique_ptr<StateDir> StateDir::temporary()
{
    const char* base = std::getenv("TMPDIR");
    std::string path =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/tessel-arraysim-XXXXXX";
    if (::mkdtemp(path.data()) == nullptr) {
        fail("cannot make a directory in " + path.substr(0, path.rfind('/')));
    }
    auto made = std::make_unique<StateDir>(path);
    made->m_temporary = true;
    return made;
}

StateDir::~StateDir()
{
    if (m_temporary) {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ::close(m_lock);
}

std::string firstLine(const std::string& file)
{
    std::ifstream stream(file);
    std::string line;
    if (!std::getline(stream, line) && line.empty()) {
        throw std::runtime_error("cannot read a line from " + file);
    }
    return line;
}

void writeWhole(const std::string& file, const std::string& text, unsigned mode)
{
    const std::string partial = file + ".part";
    const int descriptor = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (descriptor < 0) {
        fail("cannot write " + file);
    }
    const bool written = ::write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(descriptor);
    if (!written || ::rename(partial.c_str(), file.c_str()) != 0) {
        fail("cannot write " + file);
    }
}

} // namespace arraysim

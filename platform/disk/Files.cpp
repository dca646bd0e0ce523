#include "ovra/disk/Files.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <memory>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace ovra::disk {
namespace {

struct Listing
{
    std::vector<std::string> names; ///< in ascending order
    int error = 0;                  ///< errno of what ended it early
};

Listing listing(const std::string& directory)
{
    Listing found;
    errno = 0;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(directory.c_str()), closedir);
    while (const dirent* entry = stream ? readdir(stream.get()) : nullptr) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            found.names.push_back(name);
        }
        errno = 0;
    }
    found.error = errno;
    std::sort(found.names.begin(), found.names.end());
    return found;
}

/**
 * Throws unless an error, 0 for none, says that something is not there; devices and processes go while they
 * are read, and a file that a process has open may have a name that is too long to be told.
 */
void requireAbsent(const std::string& path, int error)
{
    for (const int absent : {0, ENOENT, ENOTDIR, ENODEV, ENXIO, EINVAL, ESRCH, ENAMETOOLONG}) {
        if (error == absent) {
            return;
        }
    }
    throw Unreadable(path, error);
}

/**
 * A file of the kernel. No stream of the C library: with one, a thread that is left in a disk that hangs
 * would keep the process from its end, and what was written be written once more then.
 */
class File
{
public:
    File(const std::string& path, int flags) : m_fd(open(path.c_str(), flags | O_CLOEXEC)) {}
    ~File()
    {
        const int error = errno;
        if (isOpen()) {
            close(m_fd);
        }
        errno = error;
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return m_fd >= 0; }
    int fd() const { return m_fd; }

private:
    int m_fd;
};

/** The bytes of a file up to its end, or to that of a piece where it is told to end. */
std::optional<std::string> readTo(bool (*isEnd)(const std::string&), const std::string& path)
{
    const File file(path, O_RDONLY);
    std::string content;
    char piece[4096]; // what an attribute has at most
    while (!isEnd(content)) {
        const ssize_t size = file.isOpen() ? read(file.fd(), piece, sizeof(piece)) : -1;
        if (size < 0) {
            return std::nullopt;
        }
        if (size == 0) {
            break;
        }
        content.append(piece, static_cast<size_t>(size));
    }
    return content;
}

/** Of the states of thousands of disks: one read of each, where the end of a file would take another. */
std::optional<std::string> readLine(const std::string& path)
{
    std::optional<std::string> line =
        readTo([](const std::string& text) { return text.find('\n') != std::string::npos; }, path);
    if (line) {
        line->resize(std::min(line->size(), line->find('\n')));
    }
    return line;
}

std::optional<std::string> readTarget(const std::string& link)
{
    char target[PATH_MAX];
    const ssize_t size = readlink(link.c_str(), target, sizeof(target));
    return size < 0 ? std::nullopt : std::make_optional<std::string>(target, static_cast<size_t>(size));
}

/** What was read of a path, or nothing where it is absent. */
std::string there(const std::string& path, std::optional<std::string> (*read)(const std::string&))
{
    errno = 0;
    std::optional<std::string> text = read(path);
    if (!text) {
        requireAbsent(path, errno);
    }
    return text.value_or(std::string());
}

} // namespace

Unreadable::Unreadable(const std::string& path, int why)
    : std::runtime_error(path + " cannot be read" +
                         (why != 0 ? ": " + std::generic_category().message(why) : std::string())),
      error(why)
{
}

std::optional<std::string> readFile(const std::string& path)
{
    return readTo([](const std::string&) { return false; }, path);
}

std::string contentOf(const std::string& path)
{
    return readFile(path).value_or(std::string());
}

std::string valueOf(const std::string& path)
{
    return readLine(path).value_or(std::string());
}

bool writeFile(const std::string& path, const std::string& text)
{
    const File file(path, O_WRONLY | O_TRUNC);
    const ssize_t size = file.isOpen() ? write(file.fd(), text.data(), text.size()) : -1;
    errno = size < 0 ? errno : EIO; // a part of it is nothing
    return size == static_cast<ssize_t>(text.size());
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream content(text);
    for (std::string line; std::getline(content, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> namesIn(const std::string& directory)
{
    return listing(directory).names;
}

std::string contentThere(const std::string& path)
{
    return there(path, &readFile);
}

std::string valueThere(const std::string& path)
{
    return there(path, &readLine);
}

std::vector<std::string> namesThere(const std::string& directory)
{
    Listing found = listing(directory);
    requireAbsent(directory, found.error);
    return found.names;
}

std::string targetOf(const std::string& link)
{
    return readTarget(link).value_or(std::string());
}

std::string targetThere(const std::string& link)
{
    return there(link, &readTarget);
}

bool isThere(const std::string& path)
{
    const bool isFound = access(path.c_str(), F_OK) == 0;
    requireAbsent(path, isFound ? 0 : errno);
    return isFound;
}

} // namespace ovra::disk

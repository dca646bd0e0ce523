#include "ovra/disk/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
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

/** Throws unless an error, 0 for none, says that something is not there; devices go while they are read. */
void requireAbsent(const std::string& path, int error)
{
    for (const int absent : {0, ENOENT, ENOTDIR, ENODEV, ENXIO, EINVAL}) {
        if (error == absent) {
            return;
        }
    }
    throw Unreadable(path + " cannot be read: " + std::generic_category().message(error));
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File openFile(const std::string& path)
{
    return {std::fopen(path.c_str(), "re"), std::fclose};
}

/** Of the states of thousands of disks: one read of each, where the end of a file would take two more. */
std::optional<std::string> readLine(const std::string& path)
{
    char room[4096]; // what an attribute has at most
    const File file = openFile(path);
    if (!file) {
        return std::nullopt;
    }
    std::setvbuf(file.get(), room, _IOFBF, sizeof(room));
    char* text = nullptr;
    size_t size = 0;
    const ssize_t length = getdelim(&text, &size, '\n', file.get());
    const std::unique_ptr<char, void (*)(void*)> line(text, std::free);
    if (length < 0) {
        return std::feof(file.get()) != 0 ? std::make_optional<std::string>() : std::nullopt;
    }
    const bool isWhole = text[length - 1] == '\n';
    return std::string(text, static_cast<size_t>(length) - (isWhole ? 1 : 0));
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

std::optional<std::string> readFile(const std::string& path)
{
    const File file = openFile(path);
    if (!file) {
        return std::nullopt;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0); // a few bytes, once: memory for more is not worth it
    std::string content;
    char piece[4096];
    for (size_t size = sizeof(piece); size == sizeof(piece);) {
        size = std::fread(piece, 1, sizeof(piece), file.get());
        content.append(piece, size);
    }
    return std::ferror(file.get()) == 0 ? std::make_optional(content) : std::nullopt;
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
    std::FILE* const file = access(path.c_str(), F_OK) == 0 ? std::fopen(path.c_str(), "we") : nullptr;
    if (file == nullptr) {
        return false;
    }
    const bool isWritten = std::fputs(text.c_str(), file) >= 0 && std::fflush(file) == 0;
    const int error = errno;
    const bool isClosed = std::fclose(file) == 0;
    errno = isWritten ? errno : error;
    return isWritten && isClosed;
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
    char target[PATH_MAX];
    const ssize_t size = readlink(link.c_str(), target, sizeof(target));
    return size < 0 ? std::string() : std::string(target, static_cast<size_t>(size));
}

} // namespace ovra::disk

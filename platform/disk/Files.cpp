#include "ovra/disk/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
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

std::string firstLine(const std::string& content)
{
    return content.substr(0, content.find('\n'));
}

} // namespace

std::optional<std::string> readFile(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"), std::fclose);
    if (!file) {
        return std::nullopt;
    }
    std::string content;
    char piece[4096];
    for (size_t size = 1; size != 0;) {
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
    return firstLine(contentOf(path));
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
    errno = 0;
    std::optional<std::string> content = readFile(path);
    if (!content) {
        requireAbsent(path, errno);
    }
    return content.value_or(std::string());
}

std::string valueThere(const std::string& path)
{
    return firstLine(contentThere(path));
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

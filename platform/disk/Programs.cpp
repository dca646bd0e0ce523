#include "ovra/disk/Programs.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace ovra::disk {
namespace {

constexpr const char* DEFAULT_PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

/** What the shell tries for a name, one after the other. */
std::vector<std::string> candidates(const std::string& name, const std::string& path)
{
    std::vector<std::string> files;
    for (size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
        end = path.find(':', start);
        const std::string directory = path.substr(start, end - start);
        files.push_back((directory.empty() ? "." : directory) + "/" + name);
    }
    return files;
}

Presence presenceAt(const std::string& file)
{
    struct stat info = {};
    if (stat(file.c_str(), &info) != 0) {
        return errno == ENOENT || errno == ENOTDIR ? Presence::ABSENT : Presence::UNKNOWN;
    }
    return S_ISREG(info.st_mode) && access(file.c_str(), X_OK) == 0 ? Presence::PRESENT : Presence::ABSENT;
}

} // namespace

std::string searchPath()
{
    const char* const path = getenv("PATH");
    return path != nullptr ? path : DEFAULT_PATH;
}

std::vector<std::string> findAllInPath(const std::string& name, const std::string& path)
{
    std::vector<std::string> found;
    for (const std::string& file : candidates(name, path)) {
        if (presenceAt(file) == Presence::PRESENT) {
            found.push_back(file);
        }
    }
    return found;
}

std::string findInPath(const std::string& name, const std::string& path)
{
    const std::vector<std::string> found = findAllInPath(name, path);
    return found.empty() ? std::string() : found.front();
}

Presence presenceOf(const std::string& name, const std::string& path)
{
    Presence presence = Presence::ABSENT;
    for (const std::string& file : candidates(name, path)) {
        const Presence here = presenceAt(file);
        if (here == Presence::PRESENT) {
            return here;
        }
        presence = here == Presence::UNKNOWN ? here : presence;
    }
    return presence;
}

} // namespace ovra::disk

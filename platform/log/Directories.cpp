#include "Directories.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr mode_t DIRECTORY_MODE = 0750;

bool isDirectory(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string homeOfAccount()
{
    std::array<char, 4096> buffer;
    passwd account = {};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &account, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return "";
    }
    return found->pw_dir == nullptr || found->pw_dir[0] != '/' ? "" : found->pw_dir;
}

} // namespace

int makeDirectories(const std::string& path)
{
    if (path.empty()) {
        return ENOENT;
    }
    if (isDirectory(path)) {
        return 0;
    }
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        const int error = mkdir(part.c_str(), DIRECTORY_MODE) == 0 ? 0 : errno;
        if (error != 0 && !isDirectory(part)) {
            return error == EEXIST ? ENOTDIR : error;
        }
        if (slash == std::string::npos) {
            return 0;
        }
    }
}

std::string userLogDirectory()
{
    const char* stateHome = secure_getenv("XDG_STATE_HOME");
    if (stateHome != nullptr && stateHome[0] == '/') {
        return std::string(stateHome) + "/ovra/logs";
    }
    const std::string home = homeOfAccount();
    return home.empty() ? "" : home + "/.local/state/ovra/logs";
}

} // namespace ovra::log

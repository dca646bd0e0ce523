#include "session/Secret.h"

#include "kernel/Failure.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/stat.h>

namespace tesselctl {

std::string secretFromFile(const std::string& option, const std::string& path)
{
    struct stat status
    {
    };
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & S_IROTH) != 0) {
        throw UsageError(option + " " + path +
                         ": every user of this host can read this secret; chmod 600 it");
    }
    std::ifstream file(path);
    std::string line;
    if (!file) {
        throw UsageError(option + " " + path + ": " + std::strerror(errno));
    }
    std::getline(file, line);
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    if (line.empty()) {
        throw UsageError(option + " " + path + ": the first line is to hold the secret, but it is empty");
    }
    return line;
}

std::string environment(const char* name)
{
    const char* value = secure_getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace tesselctl

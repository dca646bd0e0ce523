#include "session/Secret.h"

#include "kernel/Failure.h"

#include <array>
#include <bsd/readpassphrase.h>
#include <cerrno>
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

std::string askSecret(const std::string& question)
{
    std::array<char, 4096> typed{};
    const char* answer = readpassphrase(question.c_str(), typed.data(), typed.size(), RPP_REQUIRE_TTY);
    std::string secret = answer == nullptr ? "" : answer;
    explicit_bzero(typed.data(), typed.size());
    if (answer == nullptr && errno == ENOTTY) {
        throw UsageError(
            "there is no terminal to ask for the password: give --password-file or TESSEL_PASSWORD");
    }
    if (secret.empty() || secret.size() + 1 == typed.size()) {
        throw UsageError(secret.empty() ? "no password was typed" : "the password is too long");
    }
    return secret;
}

std::string environment(const char* name)
{
    const char* value = secure_getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace tesselctl

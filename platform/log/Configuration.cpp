#include "Configuration.h"

#include <ini.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr std::array<const char*, 4> LEVEL_NAMES = {"debug", "info", "warn", "error"};
constexpr std::array<spdlog::level::level_enum, 4> LEVELS = {spdlog::level::debug, spdlog::level::info,
                                                             spdlog::level::warn, spdlog::level::err};
constexpr int MOST_DAYS = 36500;
constexpr unsigned long MOST_MIB = 1024UL * 1024;
constexpr size_t LARGEST_FILE = 64UL * 1024;

void setLevel(Configuration& configuration, const std::string& value)
{
    for (size_t i = 0; i < LEVEL_NAMES.size(); ++i) {
        if (value == LEVEL_NAMES[i]) {
            configuration.level = LEVELS[i];
            return;
        }
    }
    configuration.problems.push_back("level must be debug, info, warn or error, not \"" + value +
                                     "\": info is used");
}

/// A number that an entry may have; the default holds for any other text.
template <class Number>
void setNumber(Configuration& configuration, const std::string& value, Number Configuration::*member,
               Number most, const char* name)
{
    Number number = 0;
    const char* const end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, number);
    if (error == std::errc() && stop == end && number >= 0 && number <= most) {
        configuration.*member = number;
    } else {
        configuration.problems.push_back(std::string(name) + " must be a number from 0 to " +
                                         std::to_string(most) + ", not \"" + value +
                                         "\": " + std::to_string(Configuration().*member) + " is used");
    }
}

void setRetention(Configuration& configuration, const std::string& value)
{
    setNumber(configuration, value, &Configuration::retentionDays, MOST_DAYS, "retention_days");
}

void setMostPerDay(Configuration& configuration, const std::string& value)
{
    setNumber(configuration, value, &Configuration::mostMibPerDay, MOST_MIB, "max_mib_per_day");
}

void setMost(Configuration& configuration, const std::string& value)
{
    setNumber(configuration, value, &Configuration::mostMib, MOST_MIB, "max_mib");
}

void setInterfaceLog(Configuration& configuration, const std::string& value)
{
    if (value == "yes" || value == "no") {
        configuration.hasInterfaceLog = value == "yes";
    } else {
        configuration.problems.push_back("enabled must be yes or no, not \"" + value + "\": yes is used");
    }
}

void setDirectory(Configuration& configuration, const std::string& value)
{
    if (!value.empty() && value.front() == '/') {
        configuration.directory = value;
    } else {
        configuration.problems.push_back("directory must be an absolute path, not \"" + value +
                                         "\": the default is used");
    }
}

struct Key
{
    const char* section;
    const char* name;
    void (*set)(Configuration&, const std::string&);
};

constexpr std::array<Key, 6> KEYS = {{{"run_log", "level", setLevel},
                                      {"interface_log", "enabled", setInterfaceLog},
                                      {"files", "max_mib_per_day", setMostPerDay},
                                      {"files", "max_mib", setMost},
                                      {"files", "retention_days", setRetention},
                                      {"files", "directory", setDirectory}}};

int handleEntry(void* user, const char* section, const char* name, const char* value)
{
    auto& configuration = *static_cast<Configuration*>(user);
    for (const Key& key : KEYS) {
        if (strcmp(section, key.section) == 0 && strcmp(name, key.name) == 0) {
            key.set(configuration, value);
            return 1;
        }
    }
    configuration.problems.push_back(std::string("\"") + name + "\" in section [" + section +
                                     "] is not known: ignored");
    return 1;
}

/// Hands the text out line by line; a line longer than the parser's buffer would be read as two.
struct LineReader
{
    const std::string& text;
    Configuration& configuration;
    size_t position = 0;
    unsigned number = 0;

    static char* next(char* buffer, int size, void* stream)
    {
        return static_cast<LineReader*>(stream)->read(buffer, size);
    }

    char* read(char* buffer, int size)
    {
        if (position >= text.size()) {
            return nullptr;
        }
        const size_t end = std::min(text.find('\n', position), text.size());
        const std::string line = text.substr(position, end - position);
        position = end + 1;
        ++number;
        const bool fits = line.size() + 2 <= static_cast<size_t>(size);
        if (!fits) {
            configuration.problems.push_back("line " + std::to_string(number) + " is longer than " +
                                             std::to_string(size - 2) + " bytes: ignored");
        }
        const std::string given = fits ? line + "\n" : "\n";
        buffer[given.copy(buffer, given.size())] = '\0';
        return buffer;
    }
};

/// The text of a regular file; an errno value instead of 0 when it cannot be had.
int readFile(const std::string& path, std::string& text)
{
    // Not to wait for a writer, should a pipe stand there.
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        return errno;
    }
    struct stat status = {};
    int result = fstat(file, &status) != 0 ? errno : S_ISREG(status.st_mode) ? 0 : EINVAL;
    std::array<char, 4096> buffer;
    while (result == 0 && text.size() <= LARGEST_FILE) {
        const ssize_t length = read(file, buffer.data(), buffer.size());
        if (length < 0) {
            result = errno;
        }
        if (length <= 0) {
            break;
        }
        text.append(buffer.data(), static_cast<size_t>(length));
    }
    close(file);
    return text.size() > LARGEST_FILE ? EFBIG : result;
}

} // namespace

Configuration parseConfiguration(const std::string& text)
{
    Configuration configuration;
    LineReader reader = {text, configuration};
    const int badLine = ini_parse_stream(&LineReader::next, &reader, &handleEntry, &configuration);
    if (badLine > 0) {
        configuration.problems.push_back("line " + std::to_string(badLine) +
                                         " is neither a [section] nor name = value: ignored");
    }
    return configuration;
}

Configuration readConfiguration(const std::string& path)
{
    std::string text;
    const int error = path.empty() ? ENOENT : readFile(path, text);
    if (error == 0) {
        return parseConfiguration(text);
    }
    Configuration defaults;
    if (error != ENOENT && error != ENOTDIR) {
        defaults.problems.push_back("cannot be read (" + std::generic_category().message(error) +
                                    "): the defaults are used");
    }
    return defaults;
}

int levelNumber(spdlog::level::level_enum level)
{
    for (size_t i = 0; i < LEVELS.size(); ++i) {
        if (LEVELS[i] == level) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace ovra::log

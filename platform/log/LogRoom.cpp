#include "LogRoom.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <sstream>
#include <sys/file.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace ovra::log {

namespace {

constexpr std::uint64_t PARTS = 16; // of the smaller limit
constexpr std::uint64_t BLOCK = 4096;
constexpr int LOCK_TRIES = 5000; // about a second: its holder may have been stopped
constexpr timespec LOCK_PAUSE = {0, 100000};
constexpr const char* UPTIME = "user.ovra.uptime";
constexpr double DAY_S = 86400;

struct LogFile
{
    std::string name;
    const char* prefix;
    Date date;
    unsigned part;
    std::uint64_t bytes;

    bool isOlderThan(const LogFile& other) const
    {
        const long days = date.number();
        const long otherDays = other.date.number();
        return days != otherDays ? days < otherDays : part < other.part;
    }
};

std::vector<LogFile> filesIn(const std::string& directory)
{
    std::vector<LogFile> files;
    eachFile(directory, [&](const char* name, const struct stat& status) {
        for (const char* const prefix : PREFIXES) {
            if (const std::optional<DatedName> parsed = parseName(prefix, name)) {
                const auto bytes = static_cast<std::uint64_t>(status.st_size);
                files.push_back(
                    {name, prefix, parsed->date, parsed->part, (bytes + BLOCK - 1) / BLOCK * BLOCK});
            }
        }
    });
    std::sort(files.begin(), files.end(),
              [](const LogFile& one, const LogFile& other) { return one.isOlderThan(other); });
    return files;
}

/// Whether no later part of its day is there.
bool isLast(const LogFile& file, const std::vector<LogFile>& files)
{
    return std::none_of(files.begin(), files.end(), [&](const LogFile& other) {
        return other.prefix == file.prefix && other.date == file.date && other.part > file.part;
    });
}

/// What the kernel says, which no clock changes: "boot-id seconds".
struct Uptime
{
    std::string boot;
    double seconds = 0;

    static Uptime now()
    {
        Uptime uptime;
        std::ifstream("/proc/sys/kernel/random/boot_id") >> uptime.boot;
        std::ifstream("/proc/uptime") >> uptime.seconds;
        return uptime;
    }

    static Uptime noted(const std::string& path)
    {
        Uptime uptime;
        std::array<char, 128> text = {};
        if (getxattr(path.c_str(), UPTIME, text.data(), text.size() - 1) > 0) {
            std::istringstream(text.data()) >> uptime.boot >> uptime.seconds;
        }
        return uptime;
    }
};

} // namespace

std::uint64_t Limits::ofFile() const
{
    const std::uint64_t smaller = ofDay == 0 ? ofAll : ofAll == 0 ? ofDay : std::min(ofDay, ofAll);
    return smaller / PARTS / BLOCK * BLOCK;
}

FileLock::FileLock(int descriptor)
{
    for (int tries = 0; descriptor >= 0 && tries < LOCK_TRIES; ++tries) {
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
            m_descriptor = descriptor;
            return;
        }
        nanosleep(&LOCK_PAUSE, nullptr);
    }
}

FileLock::~FileLock()
{
    if (m_descriptor >= 0) {
        flock(m_descriptor, LOCK_UN);
    }
}

unsigned lastPart(const std::string& directory, const std::string& prefix, const Date& date)
{
    unsigned last = 0;
    eachFile(directory, [&](const char* name, const struct stat&) {
        const std::optional<DatedName> parsed = parseName(prefix, name);
        last = parsed && parsed->date == date ? std::max(last, parsed->part) : last;
    });
    return last;
}

bool makeRoom(const std::string& directory, const Limits& limits, const Date& today)
{
    const auto counted = [&](const LogFile& file) { // some process may write to those of yesterday still
        return file.date.number() >= today.number() - 1 ? std::max(file.bytes, limits.ofFile()) : file.bytes;
    };
    std::uint64_t ofAll = limits.ofFile();
    std::uint64_t ofDay = limits.ofFile();
    const std::vector<LogFile> files = filesIn(directory);
    for (const LogFile& file : files) {
        ofAll += counted(file);
        ofDay += file.date == today ? counted(file) : 0;
    }
    for (const LogFile& file : files) {
        const bool isToday = file.date == today;
        const bool isTooMuch = (limits.ofAll != 0 && ofAll > limits.ofAll) ||
                               (isToday && limits.ofDay != 0 && ofDay > limits.ofDay);
        if (isTooMuch && !(isToday && file.bytes <= limits.ofFile() && isLast(file, files)) &&
            unlink((directory + "/" + file.name).c_str()) == 0) {
            ofAll -= counted(file);
            ofDay -= isToday ? counted(file) : 0;
        }
    }
    return (limits.ofAll == 0 || ofAll <= limits.ofAll) && (limits.ofDay == 0 || ofDay <= limits.ofDay);
}

Date provedDate(const std::string& directory, const Date& today)
{
    const Uptime now = Uptime::now();
    long proved = today.number();
    for (const LogFile& file : filesIn(directory)) {
        const Uptime then = Uptime::noted(directory + "/" + file.name);
        if (!now.boot.empty() && then.boot == now.boot && file.date.number() < today.number()) {
            const auto passed = static_cast<long>((now.seconds - then.seconds) / DAY_S);
            proved = std::min(proved, file.date.number() + passed + 1);
        }
    }
    return Date::ofNumber(proved);
}

void noteUptime(int descriptor)
{
    const Uptime now = Uptime::now();
    const std::string text = now.boot + " " + std::to_string(now.seconds);
    if (!now.boot.empty()) { // where the file system takes no notes the clock is believed
        fsetxattr(descriptor, UPTIME, text.data(), text.size(), XATTR_CREATE);
    }
}

} // namespace ovra::log

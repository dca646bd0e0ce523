#include "DatedName.h"

#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <spdlog/fmt/fmt.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr std::string_view SUFFIX = ".log";
constexpr std::string_view DATE_FORM = "dddd-dd-dd";

std::optional<Date> parseDate(std::string_view text)
{
    if (text.size() != DATE_FORM.size()) {
        return std::nullopt;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if (DATE_FORM[i] == 'd' ? text[i] < '0' || text[i] > '9' : text[i] != DATE_FORM[i]) {
            return std::nullopt;
        }
    }
    const auto number = [&](size_t begin, size_t count) {
        int value = 0;
        for (const char digit : text.substr(begin, count)) {
            value = value * 10 + (digit - '0');
        }
        return value;
    };
    const Date date = {number(0, 4), number(5, 2), number(8, 2)};
    // timegm moves a day that does not exist to one that does.
    tm calendar = {};
    calendar.tm_year = date.year - 1900;
    calendar.tm_mon = date.month - 1;
    calendar.tm_mday = date.day;
    timegm(&calendar);
    const Date existing = {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday};
    return existing == date ? std::optional<Date>(date) : std::nullopt;
}

struct CloseDirectory
{
    void operator()(DIR* directory) const { closedir(directory); }
};

} // namespace

Date Date::of(std::chrono::system_clock::time_point time)
{
    const time_t seconds = std::chrono::system_clock::to_time_t(time);
    tm calendar = {};
    localtime_r(&seconds, &calendar);
    return {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday};
}

long Date::number() const
{
    tm calendar = {};
    calendar.tm_year = year - 1900;
    calendar.tm_mon = month - 1;
    calendar.tm_mday = day;
    return static_cast<long>(timegm(&calendar) / 86400);
}

std::string Date::text() const
{
    return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

std::string datedName(std::string_view prefix, const Date& date)
{
    return std::string(prefix) + date.text() + std::string(SUFFIX);
}

std::optional<Date> dateOfName(std::string_view prefix, std::string_view name)
{
    if (name.size() != prefix.size() + DATE_FORM.size() + SUFFIX.size() ||
        name.substr(0, prefix.size()) != prefix || name.substr(name.size() - SUFFIX.size()) != SUFFIX) {
        return std::nullopt;
    }
    return parseDate(name.substr(prefix.size(), DATE_FORM.size()));
}

unsigned removeOldFiles(const std::string& directory, std::string_view prefix, const Date& today, int days)
{
    unsigned removed = 0;
    const std::unique_ptr<DIR, CloseDirectory> listing(opendir(directory.c_str()));
    if (!listing) {
        return removed;
    }
    const int descriptor = dirfd(listing.get());
    while (const dirent* entry = readdir(listing.get())) {
        const std::optional<Date> date = dateOfName(prefix, entry->d_name);
        struct stat status = {};
        if (!date || today.number() - date->number() <= days ||
            fstatat(descriptor, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0 ||
            !S_ISREG(status.st_mode)) {
            continue;
        }
        removed += unlinkat(descriptor, entry->d_name, 0) == 0 ? 1 : 0;
    }
    return removed;
}

} // namespace ovra::log

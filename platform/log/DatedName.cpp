#include "DatedName.h"

#include <charconv>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <spdlog/fmt/fmt.h>
#include <system_error>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr long SECONDS_OF_A_DAY = 86400;
constexpr std::string_view SUFFIX = ".log";
constexpr std::string_view DATE_FORM = "dddd-dd-dd";

/** @param text as long as the form. */
std::optional<Date> parseDate(std::string_view text)
{
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

Date Date::ofNumber(long number)
{
    const time_t seconds = number * SECONDS_OF_A_DAY;
    tm calendar = {};
    gmtime_r(&seconds, &calendar);
    return {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_mday};
}

long Date::number() const
{
    tm calendar = {};
    calendar.tm_year = year - 1900;
    calendar.tm_mon = month - 1;
    calendar.tm_mday = day;
    return static_cast<long>(timegm(&calendar) / SECONDS_OF_A_DAY);
}

std::string Date::text() const
{
    return fmt::format("{:04}-{:02}-{:02}", year, month, day);
}

std::string datedName(std::string_view prefix, const Date& date, unsigned part)
{
    const std::string more = part > 1 ? "_" + std::to_string(part) : "";
    return std::string(prefix) + date.text() + more + std::string(SUFFIX);
}

std::optional<DatedName> parseName(std::string_view prefix, std::string_view name)
{
    const size_t shortest = prefix.size() + DATE_FORM.size() + SUFFIX.size();
    if (name.size() < shortest || name.substr(0, prefix.size()) != prefix ||
        name.substr(name.size() - SUFFIX.size()) != SUFFIX) {
        return std::nullopt;
    }
    const std::optional<Date> date = parseDate(name.substr(prefix.size(), DATE_FORM.size()));
    if (!date || name.size() == shortest) {
        return date ? std::optional<DatedName>({*date, 1}) : std::nullopt;
    }
    unsigned part = 0; // 0 or 1 makes no such name
    std::from_chars(name.data() + prefix.size() + DATE_FORM.size() + 1, name.data() + name.size(), part);
    return datedName(prefix, *date, part) == name ? std::optional<DatedName>({*date, part}) : std::nullopt;
}

void eachFile(const std::string& directory, const std::function<void(const char*, const struct stat&)>& call)
{
    const std::unique_ptr<DIR, CloseDirectory> listing(opendir(directory.c_str()));
    while (const dirent* entry = listing ? readdir(listing.get()) : nullptr) {
        struct stat status = {};
        if (fstatat(dirfd(listing.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(status.st_mode)) {
            call(entry->d_name, status);
        }
    }
}

unsigned removeOldFiles(const std::string& directory, std::string_view prefix, const Date& today, int days)
{
    unsigned removed = 0;
    eachFile(directory, [&](const char* name, const struct stat&) {
        const std::optional<DatedName> file = parseName(prefix, name);
        if (file && today.number() - file->date.number() > days) {
            removed += unlink((directory + "/" + name).c_str()) == 0 ? 1 : 0;
        }
    });
    return removed;
}

} // namespace ovra::log

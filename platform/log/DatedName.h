#ifndef OVRA_LOG_DATEDNAME_H
#define OVRA_LOG_DATEDNAME_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace ovra::log {

/** A day of the local calendar. */
struct Date
{
    int year = 0;
    int month = 0; ///< 1 to 12
    int day = 0;

    bool operator==(const Date& other) const
    {
        return year == other.year && month == other.month && day == other.day;
    }

    static Date of(std::chrono::system_clock::time_point time);
    /** The day that has this number(). */
    static Date ofNumber(long number);
    /** Days since a fixed day, to tell how far two dates are apart. */
    long number() const;
    /** "2026-11-21" */
    std::string text() const;
};

/** The file of a day, or one part of it where the size of files is limited. */
struct DatedName
{
    Date date;
    unsigned part = 1;
};

/** "Tessel_run_2026-11-21.log" for the prefix "Tessel_run_"; the second part ends in "_2.log". */
std::string datedName(std::string_view prefix, const Date& date, unsigned part = 1);

/** What such a name tells; nothing when it is not exactly of that form with a day that exists. */
std::optional<DatedName> parseName(std::string_view prefix, std::string_view name);

/** Calls with the name and state of each regular file in a directory. */
void eachFile(const std::string& directory, const std::function<void(const char*, const struct stat&)>& call);

/**
 * Removes the prefix's files from a directory whose date is more than that many days before today.
 * @return how many were removed.
 */
unsigned removeOldFiles(const std::string& directory, std::string_view prefix, const Date& today, int days);

} // namespace ovra::log

#endif

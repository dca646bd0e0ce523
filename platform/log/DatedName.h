#ifndef OVRA_LOG_DATEDNAME_H
#define OVRA_LOG_DATEDNAME_H

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

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
    /** Days since a fixed day, to tell how far two dates are apart. */
    long number() const;
    /** "2026-11-21" */
    std::string text() const;
};

/** "Tessel_run_2026-11-21.log" for the prefix "Tessel_run_". */
std::string datedName(std::string_view prefix, const Date& date);

/** The date in such a name; nothing when the name is not exactly of that form with a day that exists. */
std::optional<Date> dateOfName(std::string_view prefix, std::string_view name);

/**
 * Removes the prefix's files from a directory whose date is more than that many days before today.
 * @return how many were removed.
 */
unsigned removeOldFiles(const std::string& directory, std::string_view prefix, const Date& today, int days);

} // namespace ovra::log

#endif

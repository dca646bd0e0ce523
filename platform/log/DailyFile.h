#ifndef OVRA_LOG_DAILYFILE_H
#define OVRA_LOG_DAILYFILE_H

#include "LogRoom.h"

#include <functional>
#include <string>
#include <string_view>

namespace ovra::log {

/** Where log files stand, and for how long. */
struct Place
{
    std::string directory; ///< tried first, whenever a file is opened; empty: there is none
    std::function<std::string()> userDirectory; ///< gives the one tried next
    int retentionDays = 0;                      ///< see removeOldFiles; 0 keeps all
    Limits limits;
};

/**
 * A log file for each day, shared with the other processes that write to the same directory: every record is
 * appended by one write. Where the size is limited a day has several parts. Not thread-safe.
 */
class DailyFile
{
public:
    /** @param prefix of the file names, before the date. */
    DailyFile(std::string prefix, Place place);
    ~DailyFile();
    DailyFile(const DailyFile&) = delete;
    DailyFile& operator=(const DailyFile&) = delete;

    /** Opens the file of that day if need be; 0, or the errno value of the directory tried last. */
    int prepare(const Date& date, bool isLookedAt = true);

    /**
     * Appends a record, which ends in a newline; 0, or an errno value when it was not written whole.
     * @param isLookedAt whether the file may have been removed since the last record: it is made again then.
     */
    int write(const Date& date, std::string_view record, bool isLookedAt = true);

    /** Where the open file is; empty when none is. */
    const std::string& directory() const { return m_directory; }
    /** Why the place's own directory is not used; 0 when it is. */
    int firstError() const { return m_firstError; }

private:
    int open(const Date& date);
    int openIn(const std::string& directory, const Date& date);
    int openPart(const std::string& directory, const Date& date);
    bool stillThere() const;
    int append(std::string_view record);
    int appendWithin(std::string_view record);
    bool holds(std::uint64_t bytes) const;
    void close();

    std::string m_prefix;
    Place m_place;
    int m_descriptor = -1;
    int m_process = 0; ///< that has opened it: a child shares its locks
    Date m_date;
    std::string m_directory;
    int m_firstError = 0;
    std::uint64_t m_wanted = 0; ///< bytes that a part must have room for
    bool m_cutShort = false; ///< the last record was written in part: the next one begins a line of its own
};

} // namespace ovra::log

#endif

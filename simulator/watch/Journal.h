#ifndef SIMULATOR_WATCH_JOURNAL_H
#define SIMULATOR_WATCH_JOURNAL_H

#include <json/json.h>

#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace arraysim {

/** One request that the array answered, or meant to. */
struct JournalEntry
{
    unsigned long connection = 0;
    std::string method;
    std::string target;   ///< raw, behind the device ID
    std::string resource; ///< the target with the ID as {id}, for the counters
    std::string body;     ///< secrets removed
    std::string contentType;
    int status = 0;
    int code = 0;
    unsigned fault = 0; ///< the fault that struck, 0 for none
    double milliseconds = 0;
};

/** Remembers, counts and logs requests. Thread-safe. */
class Journal
{
public:
    /** Opens the log file; "-" is the standard error stream, an empty name no log. */
    explicit Journal(const std::string& logFile);

    void add(const JournalEntry& entry);
    /** A line of its own in the log. */
    void note(const std::string& text);

    /** Entries with a number above since, oldest first; only the last 50000 are kept. */
    Json::Value entries(unsigned long since);
    /** Requests by method and resource. */
    Json::Value requests();
    void clearEntries();
    void clearCounters();

private:
    void write(const std::string& line);

    std::mutex m_mutex;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file{nullptr, nullptr};
    std::deque<Json::Value> m_entries;
    unsigned long m_lastNumber = 0;
    std::map<std::string, unsigned long> m_requests;
};

} // namespace arraysim

#endif

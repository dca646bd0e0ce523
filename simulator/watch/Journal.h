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
    unsigned long number = 0; ///< given by the journal
    unsigned long connection = 0;
    unsigned session = 0; ///< the number of its session, 0 for none
    std::string method;
    std::string target;   ///< raw, behind the device ID; secrets removed
    std::string resource; ///< the target with the ID as {id}, for the counters
    std::string body;     ///< secrets removed, cut
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
    /**
     * Opens the log file; "-" is the standard error stream, an empty name no log. Entries are kept only where
     * somebody can read them.
     */
    Journal(const std::string& logFile, bool isReadable);

    bool isReadable() const { return m_isReadable; }

    void add(const JournalEntry& entry);
    /** A line of its own in the log. */
    void note(const std::string& text);

    /** Entries with a number above since, oldest first; only the last 50000 are kept, in at most 64 MiB. */
    Json::Value entries(unsigned long since);
    /** Requests by method and resource. */
    Json::Value requests();
    void clearEntries();
    void clearCounters();

private:
    void write(const std::string& line);

    std::mutex m_mutex;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file{nullptr, nullptr};
    const bool m_isReadable;
    std::deque<JournalEntry> m_entries;
    std::size_t m_size = 0; ///< of the entries, in bytes
    unsigned long m_lastNumber = 0;
    std::map<std::string, unsigned long> m_requests;
};

} // namespace arraysim

#endif

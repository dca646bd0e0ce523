#ifndef OVRA_LOG_LOGSERVICE_H
#define OVRA_LOG_LOGSERVICE_H

#include "Configuration.h"
#include "DailySink.h"

#include <array>
#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>

namespace ovra::log {

/** The values of an interface record, in the order of Log_Interface_Info's arguments. */
using InterfaceRecord = std::array<std::string_view, 11>;

/**
 * The logs of a process: written while at least one product is started, with the configuration and directory
 * of the one that was started first. Thread-safe.
 */
class LogService
{
public:
    using Clock = std::function<std::chrono::system_clock::time_point()>;

    using Directory = std::function<std::string()>;

    /** @param userDirectory gives the directory of logs that have no other place. */
    LogService(Clock clock, Directory userDirectory);

    /** The one behind LogInit and its companions. */
    static LogService& ofProcess();

    /** Around a fork, so that the child finds the logs whole and not locked. */
    void lockForFork() { m_mutex.lock(); }
    void unlockAfterFork() { m_mutex.unlock(); }
    void unlockInChild();

    /** @return 0, or -1 when no directory can be written; the product is started all the same. */
    int start(const std::string& product, const std::string& iniFile, const std::string& directory);
    /** @return 0, or -1 when the product was not started. */
    int stop(const std::string& product);

    /** Number of the run-log level in force. */
    int levelInForce() const;

    void run(spdlog::level::level_enum level, std::string_view product, std::string_view text);
    /** Writes a line as it is. @return 0, or -1 when it was not written. */
    int audit(std::string_view record);
    void interfaceCall(spdlog::level::level_enum level, const InterfaceRecord& record);

    /** Where the run log's file is, or was at the stop; empty without one. Lives as long as the service. */
    const char* directory();

    /** Counts a line that could not even be formatted. */
    void drop() noexcept { ++m_dropped; }
    unsigned long dropped() const { return m_dropped; }

private:
    struct Logs
    {
        DailySink run;
        DailySink interface;
        DailyFile audit;
    };

    void open(const std::string& iniFile, const std::string& directory);
    int prepare();
    void noteDirectory();
    template <class AppendText>
    void write(DailySink& sink, spdlog::level::level_enum level, AppendText appendText);
    void writeRun(spdlog::level::level_enum level, std::string_view product, std::string_view text);
    void warn(const std::string& text);
    void tellAboutDirectory();
    void noteDrop(int error);
    void tellAboutDrops();

    const Clock m_clock;
    const Directory m_userDirectory;
    std::atomic<unsigned long> m_dropped = 0;

    mutable std::mutex m_mutex; ///< guards what follows
    std::map<std::string, unsigned> m_started;
    Configuration m_configuration;
    std::string m_wantedDirectory;
    std::set<std::string> m_directories; ///< every one that was told: its text stays where it is
    const char* m_directory = "";        ///< the one told last
    std::string m_directoryInUse;
    std::unique_ptr<Logs> m_logs; ///< null while no product is started
    int m_process;                ///< this one's number
    unsigned long m_dropsToTell = 0;
    int m_dropReason = 0;
};

} // namespace ovra::log

#endif

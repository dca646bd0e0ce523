#include "LogService.h"

#include "Directories.h"
#include "LineText.h"

#include <ovra/threads/ThreadNumber.h>

#include <new>
#include <pthread.h>
#include <system_error>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr std::uint64_t MIB = 1024UL * 1024;
// What is asked for by who has not found this library's own file: it is a part of the program itself.
constexpr const char* NOWHERE = "/logs/";
constexpr const char* SYSTEM_CONFIGURATION = "/etc/ovra/Tessel_API.ini";
constexpr std::string_view OWN_NAME = "Ovra-Log-API";

/// What stands in front of each value of an interface record, behind the one before.
constexpr std::array<std::string_view, std::tuple_size_v<InterfaceRecord>> BEFORE_VALUES = {
    "product=\"",        "\" type=\"",  "\" protocol=\"", "\" operation=\"", "\" source=\"",   "\" target=\"",
    "\" transaction=\"", "\" start=\"", "\" end=\"",      "\" result=\"",    "\" extension=\""};

/// Makes it when the library is loaded at the latest, so that no child is forked while it is half made. Where
/// there is no memory yet, whoever logs first makes it.
[[maybe_unused]] const bool isMade = [] {
    try {
        LogService::ofProcess();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}();

[[maybe_unused]] const int registered = pthread_atfork([] { LogService::ofProcess().lockForFork(); },
                                                       [] { LogService::ofProcess().unlockAfterFork(); },
                                                       [] { LogService::ofProcess().unlockInChild(); });

std::string message(int error)
{
    return std::generic_category().message(error);
}

} // namespace

LogService::LogService(Clock clock, Directory userDirectory)
    : m_clock(std::move(clock)), m_userDirectory(std::move(userDirectory)), m_process(getpid())
{
}

void LogService::unlockInChild()
{
    m_process = getpid();
    m_mutex.unlock();
}

LogService& LogService::ofProcess()
{
    // Made at the first call: static objects of a program of one file may log before this file has its own.
    // Never destroyed: they may still log when it would be.
    static LogService* const service = new LogService(&std::chrono::system_clock::now, &userLogDirectory);
    return *service;
}

int LogService::start(const std::string& product, const std::string& iniFile, const std::string& directory)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_logs) {
        open(iniFile, directory);
    }
    ++m_started[product];
    return prepare();
}

int LogService::stop(const std::string& product)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_started.find(product);
    if (found == m_started.end()) {
        return -1;
    }
    noteDirectory();
    if (--found->second == 0) {
        m_started.erase(found);
    }
    if (m_started.empty()) {
        m_logs.reset();
    }
    return 0;
}

int LogService::levelInForce() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return levelNumber(m_configuration.level);
}

const char* LogService::directory()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_logs) {
        noteDirectory();
    }
    return m_directory;
}

void LogService::noteDirectory()
{
    m_directory = m_directories.insert(m_logs->run.file().directory()).first->c_str();
}

void LogService::run(spdlog::level::level_enum level, std::string_view product, std::string_view text)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_logs || level < m_configuration.level) {
        return;
    }
    writeRun(level, product, text);
    tellAboutDirectory();
    tellAboutDrops();
}

void LogService::interfaceCall(spdlog::level::level_enum level, const InterfaceRecord& record)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_logs || !m_configuration.hasInterfaceLog) {
        return;
    }
    write(m_logs->interface, level, [&](std::string& line) {
        for (size_t i = 0; i < record.size(); ++i) {
            line += BEFORE_VALUES[i];
            appendEscaped(line, record[i], Within::Quotes);
        }
        line += '"';
    });
}

int LogService::audit(std::string_view record)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_logs || record.find('\n') != std::string_view::npos) {
        return -1;
    }
    const int error = m_logs->audit.write(Date::of(m_clock()), std::string(record).append("\n"));
    if (error != 0) {
        noteDrop(error);
    }
    tellAboutDrops();
    return error == 0 ? 0 : -1;
}

void LogService::open(const std::string& iniFile, const std::string& directory)
{
    const bool somewhere = directory != NOWHERE;
    const std::string configuration = somewhere ? iniFile : SYSTEM_CONFIGURATION;
    m_configuration = readConfiguration(configuration);
    m_wantedDirectory = !m_configuration.directory.empty() ? m_configuration.directory
                        : somewhere                        ? directory
                                                           : m_userDirectory();
    m_directoryInUse = m_wantedDirectory;
    const Place place = {m_wantedDirectory,
                         m_userDirectory,
                         m_configuration.retentionDays,
                         {m_configuration.mostMibPerDay * MIB, m_configuration.mostMib * MIB}};
    m_logs.reset(
        new Logs{{m_process, PREFIXES[0], place}, {m_process, PREFIXES[1], place}, {PREFIXES[2], place}});
    for (const std::string& problem : m_configuration.problems) {
        warn(std::string(configuration).append(": ").append(problem));
    }
}

int LogService::prepare()
{
    if (m_logs->run.file().prepare(Date::of(m_clock())) != 0) {
        return -1;
    }
    tellAboutDirectory();
    return 0;
}

template <class AppendText>
void LogService::write(DailySink& sink, spdlog::level::level_enum level, AppendText appendText)
{
    spdlog::details::log_msg record(m_clock(), {}, {}, level, {});
    record.thread_id = static_cast<size_t>(threadNumber(m_process));
    appendText(sink.begin(record));
    sink.end();
    if (sink.lastError() != 0) {
        noteDrop(sink.lastError());
    }
}

void LogService::writeRun(spdlog::level::level_enum level, std::string_view product, std::string_view text)
{
    write(m_logs->run, level, [&](std::string& line) {
        appendEscaped(line, product, Within::Word);
        line += ' ';
        appendEscaped(line, text, Within::Text);
    });
}

void LogService::noteDrop(int error)
{
    drop();
    ++m_dropsToTell;
    m_dropReason = error;
}

void LogService::warn(const std::string& text)
{
    writeRun(spdlog::level::warn, OWN_NAME, text);
}

void LogService::tellAboutDirectory()
{
    const std::string& used = m_logs->run.file().directory();
    if (used.empty() || used == m_directoryInUse) {
        return;
    }
    m_directoryInUse = used;
    if (used != m_wantedDirectory) {
        warn("log directory \"" + m_wantedDirectory + "\" cannot be used (" +
             message(m_logs->run.file().firstError()) + "): logs are written here, in \"" + used + "\"");
    }
}

void LogService::tellAboutDrops()
{
    if (m_dropsToTell == 0 || m_logs->run.lastError() != 0) {
        return;
    }
    const unsigned long count = m_dropsToTell;
    m_dropsToTell = 0;
    warn(std::to_string(count) + " lines could not be written (" + message(m_dropReason) + ")");
}

} // namespace ovra::log

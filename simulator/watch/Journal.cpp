#include "watch/Journal.h"

#include "base/Text.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace arraysim {
namespace {

constexpr std::size_t KEPT_ENTRIES = 50000;
constexpr std::size_t KEPT_BYTES = 64UL * 1024 * 1024;

std::size_t sizeOf(const JournalEntry& entry)
{
    return sizeof entry + entry.method.size() + entry.target.size() + entry.resource.size() +
           entry.body.size() + entry.contentType.size();
}

Json::Value json(const JournalEntry& entry)
{
    Json::Value shown(Json::objectValue);
    shown["number"] = Json::UInt64(entry.number);
    shown["connection"] = Json::UInt64(entry.connection);
    shown["session"] = entry.session;
    shown["method"] = entry.method;
    shown["path"] = entry.target;
    shown["body"] = entry.body;
    shown["contentType"] = entry.contentType;
    shown["status"] = entry.status;
    shown["code"] = entry.code;
    shown["fault"] = entry.fault;
    return shown;
}

std::string timeNow()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(text + length, sizeof text - length, ".%03ld", now.tv_nsec / 1000000);
    return text;
}

int keepOpen(std::FILE*)
{
    return 0;
}

} // namespace

Journal::Journal(const std::string& logFile, bool isReadable) : m_isReadable(isReadable)
{
    if (logFile == "-") {
        m_file = {stderr, keepOpen};
    } else if (!logFile.empty()) {
        m_file = {std::fopen(logFile.c_str(), "ae"), std::fclose};
        if (!m_file) {
            throw std::runtime_error("cannot open the log " + logFile + ": " + std::strerror(errno));
        }
    }
}

void Journal::add(const JournalEntry& entry)
{
    char took[32];
    std::snprintf(took, sizeof took, " %.3fms", entry.milliseconds);
    const std::lock_guard<std::mutex> guard(m_mutex);
    ++m_lastNumber;
    if (m_isReadable) {
        m_entries.push_back(entry);
        m_entries.back().number = m_lastNumber;
        m_size += sizeOf(entry);
    }
    while (m_entries.size() > KEPT_ENTRIES || m_size > KEPT_BYTES) {
        m_size -= sizeOf(m_entries.front());
        m_entries.pop_front();
    }
    ++m_requests[entry.method + " " + entry.resource];
    write("connection=" + std::to_string(entry.connection) + " " + entry.method + " " +
          printable(entry.target) + " status=" + std::to_string(entry.status) +
          " code=" + std::to_string(entry.code) +
          (entry.fault == 0 ? std::string() : " fault=" + std::to_string(entry.fault)) + took);
}

void Journal::note(const std::string& text)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    write(printable(text));
}

Json::Value Journal::entries(unsigned long since)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    Json::Value all(Json::arrayValue);
    for (const auto& entry : m_entries) {
        if (entry.number > since) {
            all.append(json(entry));
        }
    }
    return all;
}

Json::Value Journal::requests()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    Json::Value all(Json::objectValue);
    for (const auto& [request, count] : m_requests) {
        all[request] = Json::UInt64(count);
    }
    return all;
}

void Journal::clearEntries()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_entries.clear();
    m_size = 0;
}

void Journal::clearCounters()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_requests.clear();
}

void Journal::write(const std::string& line)
{
    if (m_file) {
        std::fprintf(m_file.get(), "%s %s\n", timeNow().c_str(), line.c_str());
        std::fflush(m_file.get());
    }
}

} // namespace arraysim

#include "DailySink.h"

namespace ovra::log {

namespace {

/// Who removes a file that is written to loses lines of the past; of the next ones those of this time at
/// most.
constexpr auto BETWEEN_LOOKS = std::chrono::milliseconds(20);

const char* nameOf(spdlog::level::level_enum level)
{
    switch (level) {
    case spdlog::level::debug:
        return " DEBUG ";
    case spdlog::level::warn:
        return " WARN ";
    case spdlog::level::err:
        return " ERROR ";
    default:
        return " INFO ";
    }
}

} // namespace

DailySink::DailySink(const int& process, std::string prefix, Place place)
    : m_process(process), m_formatter("%Y-%m-%d %H:%M:%S", spdlog::pattern_time_type::local, ""),
      m_file(std::move(prefix), std::move(place))
{
}

std::string& DailySink::begin(const spdlog::details::log_msg& record)
{
    const auto second = std::chrono::floor<std::chrono::seconds>(record.time);
    if (second != m_second || m_secondText.empty()) {
        spdlog::memory_buf_t text;
        m_formatter.format(record, text);
        m_secondText.assign(text.data(), text.size());
        m_date = Date::of(record.time);
        m_second = second;
    }
    if (m_process != m_originProcess || record.thread_id != m_originThread) {
        m_originProcess = m_process;
        m_originThread = record.thread_id;
        m_originText = " " + std::to_string(m_process) + " " + std::to_string(record.thread_id);
    }
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(record.time - second).count();
    const auto digit = [milliseconds](int unit) { return static_cast<char>('0' + milliseconds / unit % 10); };
    m_time = record.time;
    m_line.assign(m_secondText).append({'.', digit(100), digit(10), digit(1)});
    return m_line.append(m_originText).append(nameOf(record.level));
}

void DailySink::end()
{
    m_line += '\n';
    const bool isLookedAt = m_time < m_lookedAt || m_time - m_lookedAt >= BETWEEN_LOOKS;
    if (isLookedAt) {
        m_lookedAt = m_time;
    }
    m_lastError = m_file.write(m_date, m_line, isLookedAt);
}

} // namespace ovra::log

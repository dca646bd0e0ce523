#include "DailySink.h"

#include <array>
#include <charconv>

namespace ovra::log {

namespace {

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

void append(std::string& line, char before, size_t number)
{
    std::array<char, 24> text = {before};
    line.append(text.data(), std::to_chars(text.data() + 1, text.data() + text.size(), number).ptr);
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
    constexpr size_t ALL_DIGITS = 1000; // so that those in front stand there too
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(record.time - second);
    m_line = m_secondText;
    append(m_line, '.', ALL_DIGITS + static_cast<size_t>(milliseconds.count()));
    m_line.erase(m_secondText.size() + 1, 1);
    append(m_line, ' ', static_cast<size_t>(m_process));
    append(m_line, ' ', record.thread_id);
    return m_line += nameOf(record.level);
}

void DailySink::end()
{
    m_line += '\n';
    m_lastError = m_file.write(m_date, m_line);
}

} // namespace ovra::log

#include "DailySink.h"

#include <spdlog/pattern_formatter.h>

#include <functional>

namespace ovra::log {

namespace {

class LevelFlag final : public spdlog::custom_flag_formatter
{
public:
    void format(const spdlog::details::log_msg& record, const tm&, spdlog::memory_buf_t& line) override
    {
        const std::string_view name = record.level == spdlog::level::debug  ? "DEBUG"
                                      : record.level == spdlog::level::warn ? "WARN"
                                      : record.level == spdlog::level::err  ? "ERROR"
                                                                            : "INFO";
        line.append(name.data(), name.data() + name.size());
    }

    std::unique_ptr<spdlog::custom_flag_formatter> clone() const override
    {
        return std::make_unique<LevelFlag>();
    }
};

/** A number that is kept: the kernel is not asked for each line. */
class ProcessFlag final : public spdlog::custom_flag_formatter
{
public:
    explicit ProcessFlag(const int& number) : m_number(number) {}

    void format(const spdlog::details::log_msg&, const tm&, spdlog::memory_buf_t& line) override
    {
        const std::string text = std::to_string(m_number);
        line.append(text.data(), text.data() + text.size());
    }

    std::unique_ptr<spdlog::custom_flag_formatter> clone() const override
    {
        return std::make_unique<ProcessFlag>(m_number);
    }

private:
    const int& m_number;
};

} // namespace

DailySink::DailySink(const std::string& pattern, const int& process, std::string prefix, Place place)
    : m_file(std::move(prefix), std::move(place))
{
    auto formatter = std::make_unique<spdlog::pattern_formatter>();
    formatter->add_flag<LevelFlag>('K').add_flag<ProcessFlag>('P', std::cref(process)).set_pattern(pattern);
    set_formatter(std::move(formatter));
}

void DailySink::sink_it_(const spdlog::details::log_msg& record)
{
    spdlog::memory_buf_t line;
    formatter_->format(record, line);
    m_lastError = m_file.write(record.time, {line.data(), line.size()});
}

} // namespace ovra::log

#ifndef OVRA_LOG_DAILYSINK_H
#define OVRA_LOG_DAILYSINK_H

#include "DailyFile.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/pattern_formatter.h>

#include <string>

namespace ovra::log {

/** Lines that begin with time, process, thread and level, in the file of their day. Not thread-safe. */
class DailySink
{
public:
    /** @param process the number that the lines tell; outlives the sink. */
    DailySink(const int& process, std::string prefix, Place place);

    /** A line that is begun with what a record tells beside its text; the rest is put behind it. */
    std::string& begin(const spdlog::details::log_msg& record);
    /** Writes that line. */
    void end();

    /** Result of the last line: 0, or an errno value when it was not written whole. */
    int lastError() const { return m_lastError; }

    DailyFile& file() { return m_file; }

private:
    const int& m_process;
    spdlog::pattern_formatter m_formatter;
    std::chrono::system_clock::time_point m_second{}; ///< of the line, with what is asked once for it:
    std::string m_secondText;
    Date m_date;
    int m_originProcess = 0; ///< of the line, with the thread, and what it says of them:
    size_t m_originThread = 0;
    std::string m_originText;
    std::chrono::system_clock::time_point m_time{};     ///< of the line
    std::chrono::system_clock::time_point m_lookedAt{}; ///< when the file was
    std::string m_line;                                 ///< its memory serves the next one
    DailyFile m_file;
    int m_lastError = 0;
};

} // namespace ovra::log

#endif

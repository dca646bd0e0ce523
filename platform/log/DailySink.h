#ifndef OVRA_LOG_DAILYSINK_H
#define OVRA_LOG_DAILYSINK_H

#include "DailyFile.h"

#include <spdlog/details/null_mutex.h>
#include <spdlog/sinks/base_sink.h>

namespace ovra::log {

/** Formats records and appends each of them to the file of its day. Not thread-safe: its owner locks. */
class DailySink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex>
{
public:
    /**
     * @param pattern spdlog's, where %K is the level in capitals.
     * @param process the number that %P writes; outlives the sink.
     */
    DailySink(const std::string& pattern, const int& process, std::string prefix, Place place);

    /** Result of the last record: 0, or an errno value when it was not written whole. */
    int lastError() const { return m_lastError; }

    DailyFile& file() { return m_file; }

private:
    void sink_it_(const spdlog::details::log_msg& record) override;
    void flush_() override {}

    DailyFile m_file;
    int m_lastError = 0;
};

} // namespace ovra::log

#endif

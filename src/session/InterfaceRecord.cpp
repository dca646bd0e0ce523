#include "session/InterfaceRecord.h"

#include "session/Log.h"

#include <ovra/bounds/bounds.h>
#include <ovra/log/LogAPI.h>

#include <ctime>
#include <utility>

namespace ovra::tessel {

namespace {

timeval now()
{
    timeval time = {};
    gettimeofday(&time, nullptr);
    return time;
}

/** Local time to the millisecond: "2024-05-01 10:20:30 045". */
struct TimeText
{
    explicit TimeText(const timeval& time)
    {
        tm local = {};
        localtime_r(&time.tv_sec, &local);
        strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
        char milliseconds[32] = {};
        sprintf_s(milliseconds, sizeof(milliseconds), " %03d", static_cast<int>(time.tv_usec / 1000));
        strcat_s(text, sizeof(text), milliseconds);
    }

    char text[256] = {};
};

} // namespace

InterfaceRecord::InterfaceRecord(std::string operation) : m_operation(std::move(operation)), m_start(now()) {}

void InterfaceRecord::write(int result) const
{
    const TimeText start(m_start);
    const TimeText end(now());
    char code[256] = {};
    sprintf_s(code, sizeof(code), "%d", result);
    const auto log = result == RESULT_SUCCESS ? Log_Interface_Info : Log_Interface_Error;
    log(PRODUCT_TAG, "1", "", m_operation.c_str(), "", "", "", start.text, end.text, code, "");
}

} // namespace ovra::tessel

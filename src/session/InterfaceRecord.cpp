#include "session/InterfaceRecord.h"

#include "session/Log.h"

#include <ovra/bounds/bounds.h>
#include <ovra/log/LogAPI.h>

#include <cstring>
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
        const SecondText& second = textOf(time.tv_sec);
        std::memcpy(text, second.text, second.length);
        sprintf_s(text + second.length, sizeof(text) - second.length, " %03d",
                  static_cast<int>(time.tv_usec / 1000));
    }

    char text[48];

private:
    struct SecondText
    {
        time_t second;
        size_t length;
        char text[32];
    };

    /** Kept by each thread: a call begins and ends in the same second mostly. */
    static const SecondText& textOf(time_t second)
    {
        thread_local SecondText t_last = {-1, 0, ""};
        if (t_last.second != second) {
            tm local = {};
            localtime_r(&second, &local);
            t_last.length = strftime(t_last.text, sizeof(t_last.text), "%Y-%m-%d %H:%M:%S", &local);
            t_last.second = second;
        }
        return t_last;
    }
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

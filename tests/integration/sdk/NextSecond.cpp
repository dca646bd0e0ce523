#include "NextSecond.h"

#include <atomic>
#include <ctime>

namespace {

std::atomic<time_t> ahead{0};

} // namespace

void nextSecond()
{
    ++ahead;
}

// Takes the place of the C library's for every library of the program that links this.
extern "C" __attribute__((visibility("default"))) time_t time(time_t* out) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const time_t seconds = now.tv_sec + ahead;
    if (out != nullptr) {
        *out = seconds;
    }
    return seconds;
}

// The pauses of scans and of tries that come again count in seconds, which is long for some thousand calls: a
// hundredth of them is slept here, and so much more is done meanwhile.

#include <ctime>
#include <unistd.h>

extern "C" int usleep(useconds_t microseconds)
{
    constexpr useconds_t SHARE = 100;
    constexpr long NANOSECONDS = 1000;
    const timespec pause = {0, static_cast<long>(microseconds / SHARE % 1000000) * NANOSECONDS};
    return nanosleep(&pause, nullptr);
}

#include "job/Tries.h"

#include "session/CallsAtWork.h"

#include <tessel/Failure.h>

#include <algorithm>
#include <random>
#include <unistd.h>

namespace ovra::tessel {
namespace {

/** Between half of a pause and all of it; other processes, forked ones too, draw another one. */
std::chrono::milliseconds spread(std::chrono::milliseconds pause)
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    std::minstd_rand random(static_cast<std::minstd_rand::result_type>(now) ^
                            static_cast<std::minstd_rand::result_type>(getpid()) << 16);
    random.discard(1);
    using Count = std::chrono::milliseconds::rep;
    return std::chrono::milliseconds(
        std::uniform_int_distribution<Count>(pause.count() / 2, pause.count())(random));
}

} // namespace

bool Tries::another()
{
    if (m_left <= 1) {
        return false;
    }
    --m_left;
    pauseFor(static_cast<unsigned>(std::chrono::microseconds(spread(m_pause)).count()));
    m_pause = std::min(2 * m_pause, m_longest);
    return true;
}

bool isBusy(const OvraAPIExceptionWithErrCode& error)
{
    return error.getErrCode() == ARRAY_NOT_READY || error.getErrCode() == ARRAY_LUN_GROUP_NOT_READY;
}

} // namespace ovra::tessel

#ifndef SESSION_RETRY_H
#define SESSION_RETRY_H

#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "session/Log.h"

#include <tessel/Exception.h>

#include <algorithm>
#include <initializer_list>

/** How many times a create reads its new object again; set by the first device manager. */
extern unsigned int gRetryTimes;

/** Pause before each of these reads, in microseconds. */
extern unsigned int gRetrySleepTimeMicroSeconds;

namespace ovra::tessel {

/**
 * Calls until it succeeds, at most gRetryTimes times more, as long as the array answers with one of the
 * codes. Any other error of the array, or the last of these, ends it quietly
 * (docs/oddities.md#not-yet-readable).
 */
template <class Call>
auto retryWhile(std::initializer_list<int> codes, const char* retryLine, Call call) -> decltype(call())
{
    for (unsigned int left = gRetryTimes;; --left) {
        try {
            return call();
        } catch (const OvraAPIExceptionWithErrCode& e) {
            if (left == 0 || std::find(codes.begin(), codes.end(), e.getErrCode()) == codes.end()) {
                keepFailure();
                return decltype(call())();
            }
        }
        COMMLOG(OS_LOG_INFO, "%s", retryLine);
        pauseFor(gRetrySleepTimeMicroSeconds);
    }
}

} // namespace ovra::tessel

#endif

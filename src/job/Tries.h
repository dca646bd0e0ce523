#ifndef JOB_TRIES_H
#define JOB_TRIES_H

#include <tessel/Access.h>
#include <tessel/Exception.h>

#include <chrono>

namespace ovra::tessel {

/** Bounded tries of one step, with pauses that double and are spread, so that those who met part. */
class Tries
{
public:
    explicit Tries(const AccessOptions& options)
        : m_left(options.tries), m_longest(options.pauseMilliseconds * LONGEST),
          m_pause(options.pauseMilliseconds)
    {
    }

    /** Pauses before another try. @return false when there is none left. */
    bool another();

private:
    static constexpr unsigned LONGEST = 20; ///< the longest pause in first ones

    unsigned m_left;
    std::chrono::milliseconds m_longest;
    std::chrono::milliseconds m_pause;
};

/** The array asks to try again later: nothing was carried out. Other codes are known of no two arrays alike.
 */
bool isBusy(const OvraAPIExceptionWithErrCode& error);

/** Calls; again, a bounded number of times, while the array says that it is busy, and so did nothing. */
template <class Call>
auto whileBusy(const AccessOptions& options, const Call& call) -> decltype(call())
{
    Tries tries(options);
    for (;;) {
        try {
            return call();
        } catch (const OvraAPIExceptionWithErrCode& error) {
            if (!isBusy(error) || !tries.another()) {
                throw;
            }
        }
    }
}

} // namespace ovra::tessel

#endif

#ifndef ATTACH_PATIENCE_H
#define ATTACH_PATIENCE_H

#include <tessel/Exception.h>

#include <chrono>
#include <thread>

namespace tesselctl {

constexpr int TRIES = 8;
constexpr std::chrono::milliseconds TRY_PAUSE(250);

/** The codes by which an array asks to come back later; ensureVisible knows the same ones. */
inline bool asksToWait(const OvraAPIExceptionWithErrCode& error)
{
    return error.getErrCode() == 1077949006 || error.getErrCode() == 1077949001;
}

/** Reads; a bounded number of times again while the array is busy. */
template <class Read>
auto patiently(const Read& read) -> decltype(read())
{
    for (int left = TRIES - 1;; --left) {
        try {
            return read();
        } catch (const OvraAPIExceptionWithErrCode& error) {
            if (left == 0 || !asksToWait(error)) {
                throw;
            }
        }
        std::this_thread::sleep_for(TRY_PAUSE);
    }
}

} // namespace tesselctl

#endif

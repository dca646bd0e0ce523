#ifndef OVRA_THREADS_NOCANCELLATION_H
#define OVRA_THREADS_NOCANCELLATION_H

#include <pthread.h>

namespace ovra {

/**
 * Puts pthread_cancel off to the end of the scope: libcurl, OpenSSL, the logs and whatever is noexcept cannot
 * be unwound half way. May be nested. (Asynchronous cancellation is for no code that has destructors.)
 */
class NoCancellation
{
public:
    NoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
    ~NoCancellation() { pthread_setcancelstate(m_before, nullptr); }
    NoCancellation(const NoCancellation&) = delete;
    NoCancellation& operator=(const NoCancellation&) = delete;

private:
    int m_before = PTHREAD_CANCEL_ENABLE;
};

} // namespace ovra

#endif

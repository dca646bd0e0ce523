#ifndef OVRA_REST_LIBRARYLOCK_H
#define OVRA_REST_LIBRARYLOCK_H

#include <mutex>

namespace ovra::rest {

/**
 * The one lock of this library: for settings, sessions and idle connections, each held for a few instructions
 * and never across a transfer. It is free again in a forked child, whichever thread held it.
 */
std::mutex& libraryMutex();

/**
 * The process's one T; the caller holds the library's lock. Made at first use: not by a guarded static, which
 * a child forked meanwhile would wait for without end. Never destroyed: static destructors may still send
 * requests.
 */
template <class T>
T& processWide()
{
    static T* instance = nullptr;
    if (instance == nullptr) {
        instance = new T;
    }
    return *instance;
}

} // namespace ovra::rest

#endif

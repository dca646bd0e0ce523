#include "LibraryLock.h"

#include <pthread.h>

namespace ovra::rest {

namespace {

std::mutex mutex; // ready before any code runs, and nothing is done to destroy it

[[maybe_unused]] const int registered =
    pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, [] { mutex.unlock(); });

} // namespace

std::mutex& libraryMutex()
{
    return mutex;
}

} // namespace ovra::rest

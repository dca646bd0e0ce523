#include "session/SessionKeys.h"

#include <mutex>
#include <set>

namespace ovra::tessel {

namespace {

struct Keys
{
    std::mutex mutex;
    std::set<unsigned int> live;
};

Keys& keys()
{
    static Keys* const instance = new Keys; // never deleted: device managers may outlive static destruction
    return *instance;
}

} // namespace

bool SessionKeys::claim(unsigned int key)
{
    const std::lock_guard<std::mutex> lock(keys().mutex);
    return key != 0 && keys().live.insert(key).second;
}

void SessionKeys::release(unsigned int key)
{
    const std::lock_guard<std::mutex> lock(keys().mutex);
    keys().live.erase(key);
}

} // namespace ovra::tessel

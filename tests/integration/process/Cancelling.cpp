// A program of a user's that cancels threads inside operations. Usage: Cancelling ADDRESS PORT LOG-DIRECTORY
#include <tessel/Tessel.h>

#include <ovra/log/LogAPI.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <pthread.h>
#include <random>
#include <sched.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned ROUNDS = 120;

/** What a thread does until it is cancelled. */
struct Work
{
    CDeviceManager* array;
    std::function<void(CDeviceManager&)> step;
    std::atomic<bool> begun = false;
};

void* workOn(void* given)
{
    auto& work = *static_cast<Work*>(given);
    for (;;) {
        work.begun = true;
        try {
            work.step(*work.array);
        } catch (const OvraAPIException&) {
            // The array refused it: the next one, please.
        }
        pthread_testcancel();
    }
}

CLunHandler& luns(CDeviceManager& array)
{
    return *static_cast<CLunHandler*>(array.getHandler(LUN_HANDLER));
}

/** Cancels a thread a little after it has begun; the device manager is used again by this thread. */
bool cancelOne(Work& work, unsigned yields)
{
    pthread_t thread = {};
    if (pthread_create(&thread, nullptr, &workOn, &work) != 0) {
        return false;
    }
    while (!work.begun) {
        sched_yield();
    }
    for (unsigned i = 0; i < yields; ++i) {
        sched_yield();
    }
    pthread_cancel(thread);
    void* result = nullptr;
    pthread_join(thread, &result);
    return result == PTHREAD_CANCELED;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 4 || LogInit("cancelling", "", nullptr, arguments[3]) != 0) {
        return 2;
    }
    const std::string address = arguments[1];
    const auto port = static_cast<unsigned int>(std::atoi(arguments[2]));
    const std::vector<std::function<void(CDeviceManager&)>> steps = {
        [](CDeviceManager& array) { luns(array).getLun("1"); },
        [](CDeviceManager& array) {
            LunMO lun;
            lun.NAME = "new";
            lun.PARENTID = "0";
            lun.CAPACITY = 1048576;
            luns(array).createLun(lun);
        },
        [&](CDeviceManager& array) { array.loginDevice(address, port, "u", "p", USERTYPE_LOCAL); },
        [](CDeviceManager& array) { array.keepAlive(); },
        [](CDeviceManager& array) { luns(array).getLun(""); },
        [](CDeviceManager&) { CDeviceManager::releaseInstance(CDeviceManager::getInstance(0, 0)); },
    };
    std::mt19937 random(4711);
    for (unsigned round = 0; round < ROUNDS; ++round) {
        CDeviceManager* const array = CDeviceManager::getInstance(5, 1000);
        array->useConnection(address, port, "device", "token", "cookie=1");
        Work work = {array, steps[round % steps.size()]};
        if (!cancelOne(work, random() % 24) || luns(*array).getLun("1").ID != "1") {
            std::cerr << "round " << round << "\n";
            return 1;
        }
        CDeviceManager::releaseInstance(array);
    }
    return LogFini("cancelling") == 0 ? 0 : 1;
}

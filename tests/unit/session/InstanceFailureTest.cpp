// Device managers on a host that is out of memory; replaces operator new, and so is a program of its own.

#include "session/DeviceManagerImpl.h"
#include "session/SessionKeys.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

/** Allocations that still succeed; negative: all do. */
thread_local long allocationsLeft = -1;
/** Where the device manager was made that was made last. */
thread_local const void* lastInstance = nullptr;

} // namespace

// Not inlined: the compiler would see memory of malloc released by delete.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    void* const memory = allocationsLeft == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    allocationsLeft -= allocationsLeft > 0 ? 1 : 0;
    lastInstance = size == sizeof(CDeviceManagerImpl) ? memory : lastInstance;
    return memory;
}

__attribute__((noinline)) void operator delete(void* memory) noexcept
{
    std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

TEST(InstanceFailures, ADeviceManagerThatCannotBeMadeLeavesItsKeyFree)
{
    // One lives all the while: what the first one allocates for good is there.
    CDeviceManager* const other = CDeviceManager::getInstance(0, 0);
    long failures = 0;
    for (bool failed = true; failed;) {
        lastInstance = nullptr;
        allocationsLeft = failures;
        CDeviceManager* made = nullptr;
        try {
            made = CDeviceManager::getInstance(0, 0);
        } catch (const std::bad_alloc&) {
            made = nullptr;
        }
        allocationsLeft = -1;
        failed = made == nullptr;
        failures += failed ? 1 : 0;
        if (failed && lastInstance != nullptr) {
            const unsigned int key =
                CDeviceManagerImpl::sessionKey(static_cast<const CDeviceManagerImpl*>(lastInstance));
            EXPECT_TRUE(ovra::tessel::SessionKeys::claim(key)) << "after " << failures << " allocations";
            ovra::tessel::SessionKeys::release(key);
        }
        if (made != nullptr) {
            CDeviceManager::releaseInstance(made);
        }
    }
    EXPECT_GT(failures, 2);
    CDeviceManager::releaseInstance(other);
}

} // namespace

// A call that is ended on a host that is out of memory; replaces operator new, and so is a program of its
// own.

#include "EndedCommand.h"

#include "host/CommandLines.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> g_toFail{0}; ///< allocations

} // namespace

// Not inlined: the compiler would see memory of malloc released by delete.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    if (g_toFail > 0 && g_toFail-- > 0) {
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
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

class ACommandThatIsEndedWithoutMemory : public ACommandOfACall, public testing::WithParamInterface<long>
{
};

TEST_P(ACommandThatIsEndedWithoutMemory, IsEndedOnceThereIsSome)
{
    beforeItEnds = [] { g_toFail = GetParam(); };
    cancelled([] { ovra::tessel::runCommand("echo up >&9; sleep 600; true"); });
    EXPECT_TRUE(isNobodyLeft());
    EXPECT_TRUE(isEachCollected());
    EXPECT_LE(g_toFail, 0) << "as often as was said";
}

INSTANTIATE_TEST_SUITE_P(Times, ACommandThatIsEndedWithoutMemory, testing::Values(1, 2, 3));

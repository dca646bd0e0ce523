// What an observed call costs beside one that is not: memory that is asked for, which is the same everywhere;
// and what comes of it where there is none.

#include "Recorder.h"
#include "observer/Kinds.h"
#include "observer/Observers.h"
#include "observer/Steps.h"
#include "unit/handlers/HandlerTest.h"

#include <cstdlib>
#include <new>

namespace {

thread_local unsigned long t_allocations = 0;
thread_local unsigned long t_toFail = 0; ///< the one that fails; 0: none

} // namespace

// Not inlined: the compiler would see memory of malloc released by delete.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    if (++t_allocations == t_toFail) {
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
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

/** Looks at every event, as one that counts does. */
struct Counter : Observer
{
    void operationEnded(const OperationEvent& event) override { calls += event.isDone ? 1 : 0; }
    unsigned long calls = 0;
};

class CostOfAnObserver : public HandlerTest
{
protected:
    /** Of one call, whatever was written down before. */
    unsigned long allocationsOf(const std::function<void()>& call)
    {
        platform.reset();
        const unsigned long before = t_allocations;
        call();
        return t_allocations - before;
    }
    /** How many more a call has when somebody is told of it. */
    unsigned long more(const std::function<void()>& call)
    {
        call(); // what is made once
        const unsigned long alone = allocationsOf(call);
        const auto counter = std::make_shared<Counter>();
        addObserver(counter);
        const unsigned long observed = allocationsOf(call);
        removeObserver(counter);
        EXPECT_EQ(counter->calls, 1U);
        return observed - alone;
    }
};

} // namespace

TEST_F(CostOfAnObserver, IsThePlaceOfTheObjectsThatACallNames)
{
    CLunHandler& luns = handlers::lun(manager);
    EXPECT_EQ(more([&] { luns.getLun("7"); }), 1U);
    EXPECT_EQ(more([&] { manager.keepAlive(); }), 0U);
}

TEST(ObserversWithoutMemory, AreToldOfTheNextCallWhateverFailedInThisOne)
{
    unsigned long untold = 0;
    bool hasFailed = true;
    for (unsigned long number = 1; hasFailed; ++number) {
        const Recording recording;
        const auto act = [] {
            const Untold waiting;
            const TimedScan scan("a scan for what has a name that takes memory");
            Observation call("an operation with a name that takes memory", nullptr);
            call.names(kinds::LUN, "an ID that takes memory as well, and more");
            call.sends("TYPE", MO_LUN);
            call.sends("NAME", std::string("a name that takes memory, and more of it"));
            call.ended(0);
        };
        t_toFail = t_allocations + number;
        try {
            act();
        } catch (const std::bad_alloc&) { // there was none for the call itself
        }
        hasFailed = t_allocations >= t_toFail;
        t_toFail = 0;
        EXPECT_EQ(Observation::ofThread(), nullptr);
        untold += recording->operations.empty() || recording->steps.empty() ? 1 : 0;
        recording->operations.clear();
        recording->steps.clear();
        if (hasFailed) {
            act();
        }
        EXPECT_EQ(recording->operations.size(), hasFailed ? 1U : 0U) << number;
    }
    EXPECT_GT(untold, 5U);
}

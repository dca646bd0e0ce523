#include "RestFixture.h"

#include <cstdlib>
#include <new>

namespace {

/** Allocations of this thread that still succeed; negative: all do. */
thread_local long allocationsLeft = -1;

} // namespace

// Not inlined: the compiler would see memory of malloc released by delete.
__attribute__((noinline)) void* operator new(std::size_t size)
{
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
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

namespace tessel_test {
namespace {

class RestAllocationFailures : public RestFixture
{
};

TEST_F(RestAllocationFailures, EveryOneEndsInBadAllocAndTheNextCallWorks)
{
    MisbehavingServer server;
    server.setDefault(Behaviour::success("[{\"ID\":\"7\",\"NAME\":\"a name that is longer than others\"}]",
                                         "Set-Cookie: session=a-session-that-is-longer-than-others;\r\n"));
    ASSERT_TRUE(openSession(server, "127.0.0.1", "a token that is longer than others", "a=b"));
    ASSERT_EQ(0, sendInSession("/warm-up").result);

    bool failed = true;
    long failures = 0;
    for (long allocations = 0; failed; ++allocations) {
        RestRequest request;
        RestResponse response;
        std::vector<std::string> headers;
        request.BodyAddProperty("NAME", std::string("a name that is longer than others"));
        const std::string path = "/lun/7?and=a-path-that-is-longer-than-others";
        int result = -1;
        failed = false;
        allocationsLeft = allocations;
        try {
            result = request.SendRequest(sessionKey(), path, REST_PUT, response, headers, true);
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        allocationsLeft = -1;
        failures += failed ? 1 : 0;
        if (!failed) {
            EXPECT_EQ(0, result) << "with " << allocations << " allocations";
        }
        ASSERT_EQ(0, sendInSession("/after").result);
    }
    EXPECT_GT(failures, 20);
}

} // namespace
} // namespace tessel_test

#include "RestFixture.h"

#include <curl/curl.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

/** Allocations of this thread that still succeed; negative: all do. */
thread_local long allocationsLeft = -1;

/** The same for libcurl's. Behind the first that fails they succeed again. */
thread_local long curlAllocationsLeft = -1;

bool curlAllocationFails()
{
    return curlAllocationsLeft >= 0 && curlAllocationsLeft-- == 0;
}

/** libcurl's memory; the library starts libcurl too, but the first one decides. */
[[maybe_unused]] const CURLcode started = curl_global_init_mem(
    CURL_GLOBAL_DEFAULT, [](size_t size) { return curlAllocationFails() ? nullptr : std::malloc(size); },
    &std::free,
    [](void* memory, size_t size) { return curlAllocationFails() ? nullptr : std::realloc(memory, size); },
    [](const char* text) { return curlAllocationFails() ? nullptr : strdup(text); },
    [](size_t count, size_t size) { return curlAllocationFails() ? nullptr : std::calloc(count, size); });

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

TEST_F(RestAllocationFailures, InsideLibcurlSpoilNoConnection)
{
    MisbehavingServer server;
    server.setDefault(Behaviour::success("{\"ID\":\"7\"}"));
    ASSERT_TRUE(openSession(server));
    RestSettings settings = trusting();
    settings.timeoutSeconds = 5; // for a request that hangs on a spoiled handle
    RestSetSettings(settings);
    ASSERT_EQ(0, sendInSession("/warm-up").result);

    long failures = 0;
    for (long allocations = 0; curlAllocationsLeft < 0; ++allocations) {
        curlAllocationsLeft = allocations;
        try {
            failures += sendInSession("/lun/7").result != 0 ? 1 : 0;
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        const bool reached = curlAllocationsLeft < 0;
        curlAllocationsLeft = -1;
        server.closeConnections(); // whatever was kept has to connect again, and to prove the server
        ASSERT_EQ(0, sendInSession("/after").result) << "with " << allocations << " allocations";
        if (!reached) {
            break;
        }
    }
    EXPECT_GT(failures, 20);
}

} // namespace
} // namespace tessel_test

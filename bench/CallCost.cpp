// Makes calls, of which bench/counts counts what they take; prints the allocations of one.
//   call_cost WAY CALLS PORT CAFILE      WAY: bare, json, least, sdk, observed

#include "Ways.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

// NOLINTBEGIN(bugprone-reserved-identifier): those of the C library
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {
std::atomic<unsigned long> allocations{0};
}

// Below everything: those of libcurl and OpenSSL are counted too.
extern "C" void* malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* memory, size_t size)
{
    ++allocations;
    return __libc_realloc(memory, size);
}

namespace {

void call(bench::Way& way, unsigned times)
{
    for (unsigned i = 0; i < times; ++i) {
        way.call();
    }
}

} // namespace

int main(int count, char** arguments)
{
    constexpr unsigned WARM = 20;
    if (count != 5) {
        std::fprintf(stderr, "usage: call_cost WAY CALLS PORT CAFILE\n");
        return 1;
    }
    try {
        const unsigned calls = static_cast<unsigned>(std::stoul(arguments[2]));
        const auto way = bench::way(arguments[1], {arguments[3], arguments[4]});
        call(*way, WARM);
        const unsigned long before = allocations;
        call(*way, calls);
        std::printf("%.1f\n", static_cast<double>(allocations - before) / calls);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "call_cost: %s\n", problem.what());
    }
    return 1;
}

// Threads with a device manager each, beside as many loops of libcurl alone.

#include "Rounds.h"
#include "Servers.h"

#include <algorithm>
#include <thread>

namespace {

using Ways = std::vector<std::unique_ptr<bench::Way>>;

Ways waysOf(const char* name, const bench::Server& server, unsigned count)
{
    Ways ways;
    while (ways.size() < count) {
        ways.push_back(bench::way(name, server));
    }
    return ways;
}

/** A thread for each way makes so many calls. */
std::function<void()> atOnce(const Ways& ways, unsigned calls)
{
    return [&ways, calls] {
        std::vector<std::thread> threads;
        for (const auto& way : ways) {
            threads.emplace_back([&way, calls] {
                for (unsigned i = 0; i < calls; ++i) {
                    way->call();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    };
}

/** Threads that wait for an array of 5 ms most of the time. */
void besideLoops(unsigned threads, bool isShort)
{
    bench::Servers server(1, 5);
    const Ways bare = waysOf("bare", server[0], threads);
    const Ways sdk = waysOf("sdk", server[0], threads);
    const unsigned calls = isShort ? 10 : 40;
    atOnce(bare, 2)();
    atOnce(sdk, 2)();
    const bench::Rounds beside(isShort ? 4 : 20, atOnce(sdk, calls), atOnce(bare, calls));
    const std::vector<double> wall = beside.wall();
    bench::tellPoint("wall of calls at 5 ms beside as many loops of libcurl", "threads", threads, wall);
    if (threads == 64) {
        bench::tellRow("64 threads at 5 ms, wall against 64 loops of libcurl", wall, 1.05);
        const unsigned long oneEach = 2UL * threads; // a thread's first may not have met all others
        bench::tellRow("64 threads at 5 ms, handshakes beyond one of each",
                       {static_cast<double>(std::max(server.handshakes(), oneEach) - oneEach)}, 0, "count");
        const Ways least = waysOf("least", server[0], threads);
        atOnce(least, 2)();
        bench::tellRow("the least that is promised, 64 threads at 5 ms, wall against 64 loops of libcurl",
                       bench::Rounds(isShort ? 4 : 20, atOnce(least, calls), atOnce(bare, calls)).wall(),
                       bench::NO_AIM);
    }
}

} // namespace

void bench::threadRows(bool isShort)
{
    for (const unsigned threads : {1U, 4U, 16U, 64U}) {
        besideLoops(threads, isShort);
    }
    constexpr unsigned THREADS = 16;
    const Servers server;
    const Ways many = waysOf("sdk", server[0], THREADS);
    const Ways one = waysOf("sdk", server[0], 1);
    const unsigned calls = isShort ? 50 : 200;
    atOnce(many, 2)();
    const Rounds beside(isShort ? 4 : 20, atOnce(many, calls), atOnce(one, THREADS * calls));
    tellRow("CPU of a call with 16 threads against one", beside.cpu(), 1.05);
}

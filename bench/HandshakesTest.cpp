// Connections are kept: a handshake costs as much as hundreds of calls.

#include "Servers.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <thread>

using bench::Sdk;
using bench::Servers;

namespace {

class Handshakes : public testing::Test
{
protected:
    Handshakes()
    {
        rlimit descriptors{};
        getrlimit(RLIMIT_NOFILE, &descriptors);
        descriptors.rlim_cur = 1024; // what a process has where nobody says otherwise
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &descriptors), 0);
    }
};

TEST_F(Handshakes, AreOneForEachOf256ArraysInTurn)
{
    constexpr unsigned ARRAYS = 256;
    Servers servers(ARRAYS);
    std::vector<std::unique_ptr<Sdk>> arrays;
    for (unsigned i = 0; i < ARRAYS; ++i) {
        arrays.push_back(std::make_unique<Sdk>(servers[i]));
    }
    for (int round = 0; round < 3; ++round) {
        for (const auto& array : arrays) {
            array->call();
        }
    }
    EXPECT_EQ(servers.handshakes(), ARRAYS);
}

TEST_F(Handshakes, AreOneAtMostForEachOf64ThreadsWithAManagerOfItsOwn)
{
    constexpr unsigned THREADS = 64;
    Servers server(1, 5);
    std::vector<std::unique_ptr<Sdk>> arrays;
    for (unsigned i = 0; i < THREADS; ++i) {
        arrays.push_back(std::make_unique<Sdk>(server[0]));
    }
    std::vector<std::thread> threads;
    threads.reserve(THREADS);
    for (const auto& array : arrays) {
        threads.emplace_back([&array] {
            for (int call = 0; call < 10; ++call) {
                array->call();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(server.handshakes(), THREADS);
}

} // namespace

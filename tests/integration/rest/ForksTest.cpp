#include "RestFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tessel_test {
namespace {

class RestForks : public RestFixture
{
};

int exitStatusOf(pid_t child)
{
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST_F(RestForks, AForkedChildDoesNotTouchTheParentsConnection)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer's allocator may be locked in a child of a process with threads";
#endif
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url(), "/parent").result);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const bool sent = send(server.url(), "/child").result == 0;
        RestSetSettings(trusting()); // drops idle connections
        // The child's own clean-up runs too, but not the server's, whose thread it does not have.
        _exit(sent ? 0 : 1);
    }
    EXPECT_EQ(0, exitStatusOf(child));
    EXPECT_EQ(0, send(server.url(), "/parent-again").result);

    const std::vector<ReceivedRequest> requests = server.requests();
    ASSERT_EQ(3U, requests.size());
    EXPECT_EQ(requests[0].connection, requests[2].connection);
    EXPECT_NE(requests[0].connection, requests[1].connection);
    EXPECT_EQ(2U, server.handshakes());
}

TEST_F(RestForks, AProcessThatEndsClosesItsIdleConnectionsInOrder)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer's allocator may be locked in a child of a process with threads";
#endif
    MisbehavingServer server;
    const pid_t child = fork();
    if (child == 0) {
        exit(send(server.url()).result);
    }
    EXPECT_EQ(0, exitStatusOf(child));
    for (int i = 0; i < 3000 && server.endedByClient() == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(1U, server.closeNotifies());
}

TEST_F(RestForks, AChildForkedWhileOtherThreadsUseTheLibraryIsNotLockedOut)
{
    std::atomic<bool> stop{false};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            while (!stop) {
                CUserManager::getInstance()->hasUser(identity());
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            _exit(CUserManager::getInstance()->hasUser(identity()) ? 1 : 0);
        }
        EXPECT_EQ(0, exitStatusOf(child));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
} // namespace tessel_test

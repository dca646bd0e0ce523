#include "RestFixture.h"

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace tessel_test {
namespace {

class RestConnections : public RestFixture
{
};

TEST_F(RestConnections, LoginOperationsAndLogoutShareOneHandshake)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url(), "/deviceManager/rest/xxxx/sessions", REST_POST).result);
    ASSERT_TRUE(openSession(server));
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(0, sendInSession("/lun/7", i % 2 == 0 ? REST_GET : REST_PUT).result);
    }
    ASSERT_EQ(0, send(server.url(), "/deviceManager/rest/dev-9/sessions", REST_DELETE).result);
    CUserManager::getInstance()->removeUser(identity());

    EXPECT_EQ(1U, server.accepts());
    EXPECT_EQ(1U, server.handshakes());
    EXPECT_EQ(22U, server.requestCount());
}

TEST_F(RestConnections, EachMethodButGetIsDeliveredOnceWhenAReusedConnectionDies)
{
    for (const REST_REQUEST_MODE_E mode : {REST_POST, REST_PUT, REST_DELETE}) {
        for (const Behaviour& death : {Behaviour::closeWithoutAnswer(), Behaviour::resetWithoutAnswer()}) {
            MisbehavingServer server;
            ASSERT_EQ(0, send(server.url(), "/first").result);
            server.enqueue(death);
            const Outcome outcome = send(server.url(), "/second", mode);
            EXPECT_GE(outcome.result, 2);
            EXPECT_LE(outcome.result, 99);
            EXPECT_EQ(2U, server.requestCount());
            EXPECT_EQ(0, send(server.url(), "/third").result);
        }
    }
}

TEST_F(RestConnections, AGetIsTriedOnceMoreOnANewConnectionWhenAReusedOneDies)
{
    for (const Behaviour& death : {Behaviour::closeWithoutAnswer(), Behaviour::resetWithoutAnswer()}) {
        MisbehavingServer server;
        ASSERT_EQ(0, send(server.url(), "/first").result);
        server.enqueue(death);
        EXPECT_EQ(0, send(server.url(), "/second").result);
        const std::vector<ReceivedRequest> requests = server.requests();
        ASSERT_EQ(3U, requests.size());
        EXPECT_EQ("/second", requests[1].target());
        EXPECT_EQ("/second", requests[2].target());
        EXPECT_NE(requests[1].connection, requests[2].connection);
    }
}

TEST_F(RestConnections, AGetIsNotTriedAThirdTime)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url(), "/first").result);
    server.setDefault(Behaviour::closeWithoutAnswer());
    EXPECT_EQ(52, send(server.url(), "/second").result);
    EXPECT_EQ(3U, server.requestCount());
}

TEST_F(RestConnections, AGetOnANewConnectionIsNotTriedAgain)
{
    MisbehavingServer server;
    server.setDefault(Behaviour::closeWithoutAnswer());
    EXPECT_EQ(52, send(server.url()).result);
    EXPECT_EQ(1U, server.requestCount());
}

TEST_F(RestConnections, AGetIsNotTriedAgainOnceAnAnswerBegan)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url(), "/first").result);
    server.setDefault(Behaviour::truncatedBody());
    EXPECT_NE(0, send(server.url(), "/second").result);
    EXPECT_EQ(2U, server.requestCount());
}

TEST_F(RestConnections, APostAfterTheServerClosedTheIdleConnectionIsDeliveredOnce)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url(), "/first").result);
    server.closeConnections();
    EXPECT_EQ(0, send(server.url(), "/second", REST_POST).result);
    EXPECT_EQ(2U, server.requestCount());
    EXPECT_EQ(2U, server.handshakes());
}

TEST_F(RestConnections, AnAnswerThatNobodyAskedForIsNotTakenForTheNextOne)
{
    MisbehavingServer server;
    for (const bool inOneRecord : {true, false}) {
        Behaviour twice = Behaviour::success("{\"ID\":\"1\"}");
        const std::string forged = Behaviour::error(77, "forged").bytes;
        if (inOneRecord) {
            twice.bytes += forged;
        } else {
            twice.separately = forged;
        }
        server.enqueue(twice);
        ASSERT_EQ(0, send(server.url(), "/first").result);
        const Outcome second = send(server.url(), "/second");
        EXPECT_EQ(0, second.result);
        EXPECT_EQ(0, second.code);
    }
}

TEST_F(RestConnections, ThreadsUseConnectionsOfTheirOwn)
{
    MisbehavingServer server;
    constexpr unsigned THREADS = 4;
    constexpr unsigned REQUESTS = 50;
    std::atomic<unsigned> failures{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            for (unsigned n = 0; n < REQUESTS; ++n) {
                failures += send(server.url()).result == 0 ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0U, failures);
    EXPECT_EQ(THREADS * REQUESTS, server.requestCount());
    EXPECT_LE(server.handshakes(), THREADS);
}

TEST_F(RestConnections, ManyServersInTurnEachKeepTheirOwn)
{
    constexpr size_t SERVERS = 40;
    std::vector<std::unique_ptr<MisbehavingServer>> servers;
    for (size_t i = 0; i < SERVERS; ++i) {
        servers.push_back(std::make_unique<MisbehavingServer>());
    }
    for (int round = 0; round < 3; ++round) {
        for (const auto& server : servers) {
            ASSERT_EQ(0, send(server->url()).result);
        }
    }
    for (const auto& server : servers) {
        EXPECT_EQ(1U, server->handshakes());
    }
}

TEST_F(RestConnections, ManyThreadsMakeOneConnectionEachAtMost)
{
    constexpr unsigned THREADS = 64;
    MisbehavingServer server;
    std::atomic<unsigned> failed{0};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < THREADS; ++i) {
        threads.emplace_back([&] {
            for (int request = 0; request < 5; ++request) {
                failed += send(server.url()).result != 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0U, failed);
    EXPECT_LE(server.handshakes(), THREADS);
}

TEST_F(RestConnections, NewSettingsCloseIdleConnections)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url()).result);
    RestSetSettings(trusting());
    ASSERT_EQ(0, send(server.url()).result);
    EXPECT_EQ(2U, server.handshakes());
}

bool isTcp(int descriptor)
{
    int protocol = 0;
    socklen_t size = sizeof(protocol);
    return getsockopt(descriptor, SOL_SOCKET, SO_PROTOCOL, &protocol, &size) == 0 && protocol == IPPROTO_TCP;
}

TEST_F(RestConnections, ConnectionsAreNotInheritedByCommands)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url()).result);
    unsigned connections = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const int descriptor = std::stoi(entry.path().filename().string());
        if (!isTcp(descriptor)) {
            continue;
        }
        ++connections;
        EXPECT_TRUE((fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0) << "descriptor " << descriptor;
    }
    EXPECT_EQ(3U, connections); // the server's listener, and the connection's two ends
}

TEST_F(RestConnections, AServerThatHangsUpWhileALargeBodyIsSentDoesNotEndTheProcess)
{
    MisbehavingServer server;
    ASSERT_EQ(0, send(server.url()).result);
    for (int i = 0; i < 5; ++i) {
        server.enqueue(Behaviour::resetWithoutAnswer());
        RestRequest request;
        request.BodyAddProperty("NAME", std::string(1000000, 'n'));
        EXPECT_NE(0, send(request, server.url(), "/large", REST_POST).result);
    }
    EXPECT_EQ(0, send(server.url()).result);
}

} // namespace
} // namespace tessel_test

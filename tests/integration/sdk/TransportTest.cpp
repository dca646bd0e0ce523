// Two arrays of one process, each trusted and waited for in its own way.

#include "MisbehavingServer.h"
#include "Sdk.h"

#include <gtest/gtest.h>
#include <ovra/rest/RestSettings.h>

#include <arpa/inet.h>
#include <chrono>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using ovra::tessel::FailureKind;
using ovra::tessel::FailureReason;
using ovra::tessel::lastFailure;
using ovra::tessel::setTransport;
using ovra::tessel::TransportOptions;
using tessel_test::Behaviour;
using tessel_test::Certificate;
using tessel_test::MisbehavingServer;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;

namespace {

Behaviour likeAnArray(const ReceivedRequest& request)
{
    if (request.method() == "POST") {
        return Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})",
                                  "Set-Cookie: session=S1; path=/\r\n");
    }
    return Behaviour::success(R"({"ID":"7"})");
}

/** An array with a certificate of its own, and a device manager for it. */
struct OneArray
{
    explicit OneArray(Certificate which) : certificate(which), server(showing(which))
    {
        server.setHandler(likeAnArray);
    }

    static MisbehavingServer::Options showing(Certificate which)
    {
        MisbehavingServer::Options options;
        options.certificate = which;
        return options;
    }

    bool login()
    {
        return sdk.array().loginDevice("127.0.0.1", server.port(), "admin", "secret", USERTYPE_LOCAL);
    }

    void pin(Certificate which)
    {
        TransportOptions options;
        options.pinnedKey = TestCertificates::instance().pinnedKey(which);
        setTransport(sdk.array(), options);
    }

    Certificate certificate;
    MisbehavingServer server;
    Sdk sdk;
};

class TransportOfAnArray : public testing::Test
{
protected:
    TransportOfAnArray() { RestSetSettings(RestSettings()); }
    ~TransportOfAnArray() override { RestSetSettings(RestSettings()); }

    OneArray one{Certificate::OtherCa};
    OneArray other{Certificate::Expired};
};

} // namespace

TEST_F(TransportOfAnArray, PinsEachToItsOwnKey)
{
    one.pin(one.certificate);
    other.pin(other.certificate);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(one.login());
        EXPECT_TRUE(other.login());
        EXPECT_EQ(one.sdk.luns().getLun("7").ID, "7");
        EXPECT_EQ(other.sdk.luns().getLun("7").ID, "7");
    }
    EXPECT_EQ(one.server.handshakes(), 1U) << "its connection is kept";
    EXPECT_EQ(other.server.handshakes(), 1U);
}

TEST_F(TransportOfAnArray, IsNoProofForAnotherOne)
{
    one.pin(other.certificate);
    other.pin(one.certificate);
    for (OneArray* each : {&one, &other}) {
        EXPECT_FALSE(each->login());
        EXPECT_EQ(lastFailure().reason, FailureReason::CERTIFICATE_PIN);
        EXPECT_EQ(each->server.requestCount(), 0U);
    }
}

TEST_F(TransportOfAnArray, TakesNothingOfTheProcessAndLeavesThatToTheOthers)
{
    RestSettings process;
    process.insecure = true;
    RestSetSettings(process);
    setTransport(one.sdk.array(), TransportOptions());
    EXPECT_FALSE(one.login());
    EXPECT_EQ(lastFailure().reason, FailureReason::CERTIFICATE_AUTHORITY);
    EXPECT_TRUE(other.login()) << "as the process says";
    EXPECT_TRUE(ovra::tessel::processTransport().insecure);
}

TEST_F(TransportOfAnArray, HasAnAuthorityOfItsOwn)
{
    TransportOptions options;
    options.caFile = TestCertificates::instance().otherCaFile();
    setTransport(one.sdk.array(), options);
    EXPECT_TRUE(one.login());
    options.caFile = TestCertificates::instance().caFile();
    setTransport(one.sdk.array(), options);
    EXPECT_FALSE(one.login()) << "the connection that was trusted by another authority is not used";
    EXPECT_EQ(lastFailure().kind, FailureKind::NOT_TRUSTED);
}

TEST_F(TransportOfAnArray, HasTimeOutsOfItsOwn)
{
    one.pin(one.certificate);
    other.pin(other.certificate);
    ASSERT_TRUE(one.login());
    ASSERT_TRUE(other.login());
    TransportOptions options;
    options.pinnedKey = TestCertificates::instance().pinnedKey(one.certificate);
    options.timeoutSeconds = 1;
    setTransport(one.sdk.array(), options);
    one.server.enqueue(Behaviour::neverAnswer());
    other.server.enqueue(Behaviour::dribble(std::chrono::milliseconds(10))); // takes longer than that
    thrownBy([&] { one.sdk.luns().getLun("7"); });
    EXPECT_EQ(lastFailure().kind, FailureKind::TIMED_OUT);
    thrownBy([&] { other.sdk.luns().getLun("7"); });
    EXPECT_FALSE(lastFailure());
}

TEST_F(TransportOfAnArray, GoesWithItsDeviceManager)
{
    {
        OneArray gone(Certificate::OtherCa);
        gone.pin(Certificate::OtherCa);
        EXPECT_TRUE(gone.login());
    }
    for (int i = 0; i < 20; ++i) { // at an address that was another one's, most likely
        OneArray fresh(Certificate::OtherCa);
        EXPECT_FALSE(fresh.login());
    }
}

TEST_F(TransportOfAnArray, HoldsInThreadsThatWorkAtOnce)
{
    one.pin(one.certificate);
    other.pin(other.certificate);
    ASSERT_TRUE(one.login());
    ASSERT_TRUE(other.login());
    std::vector<std::thread> threads;
    for (OneArray* each : {&one, &other}) {
        threads.emplace_back([each] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_EQ(each->sdk.luns().getLun("7").ID, "7");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST_F(TransportOfAnArray, ThatEndsWithinTheHandshakeIsNotTakenForOneWithoutTls)
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(bind(listener, any, size), 0);
    ASSERT_EQ(listen(listener, 8), 0);
    ASSERT_EQ(getsockname(listener, any, &size), 0);
    std::thread peer([&] {
        for (int fd = accept(listener, nullptr, nullptr); fd >= 0; fd = accept(listener, nullptr, nullptr)) {
            char hello[4096];
            EXPECT_GT(read(fd, hello, sizeof(hello)), 0);
            close(fd);
        }
    });
    EXPECT_FALSE(
        one.sdk.array().loginDevice("127.0.0.1", ntohs(address.sin_port), "admin", "s", USERTYPE_LOCAL));
    EXPECT_EQ(lastFailure().reason, FailureReason::CONNECTION_ENDED);
    EXPECT_TRUE(lastFailure().canTryAgain);
    shutdown(listener, SHUT_RDWR);
    peer.join();
    close(listener);
}

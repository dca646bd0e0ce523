#include "ArrayTest.h"
#include "Codes.h"
#include "TlsConnection.h"

#include <algorithm>
#include <fstream>
#include <memory>

using testing::HasSubstr;

namespace {

constexpr std::size_t MIB = 1U << 20;

/** The most memory that a process had at a time, in KiB. */
unsigned long peakKib(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string word;
    unsigned long size = 0;
    while (status >> word && word != "VmHWM:") {
    }
    status >> size;
    return size;
}

/** Sends a body in chunks, without a length. @return the HTTP status; -1 where the connection ended first */
int sendChunked(const tessel_test::ArraySim& array, const ArrayClient& session, const std::string& body)
{
    httplib::SSLClient client(array.ip(), static_cast<int>(array.port()));
    client.enable_server_certificate_verification(false);
    const auto result = client.Post(
        "/deviceManager/rest/" + array.deviceId() + "/hostgroup",
        {{"iBaseToken", session.token}, {"Cookie", session.cookie}},
        [&](size_t offset, httplib::DataSink& sink) {
            const std::size_t size = std::min<std::size_t>(body.size() - offset, 64 * 1024);
            if (size == 0) {
                sink.done();
                return true;
            }
            return sink.write(body.data() + offset, size);
        },
        "application/json");
    return result ? result->status : -1;
}

class SimulatorLimit : public ArrayTest
{
};

TEST_F(SimulatorLimit, AChunkedBodyIsReadLikeAnother)
{
    EXPECT_EQ(sendChunked(array, client, R"({"NAME":"chunked"})"), 200);
    EXPECT_EQ(client.get("/hostgroup/1").data()["NAME"], "chunked");
}

TEST_F(SimulatorLimit, ABodyAboveTheLimitIsRefusedHoweverItIsSent)
{
    const std::string body = R"({"NAME":"large","DESCRIPTION":")" + std::string(MIB, 'x') + R"("})";
    EXPECT_EQ(sendChunked(array, client, body), 413);
    const Reply reply = client.post("/hostgroup", body);
    EXPECT_EQ(reply.status, 413);
    EXPECT_EQ(reply.code(), code::METHOD_UNSUPPORTED);
    EXPECT_TRUE(client.get("/hostgroup").data().isNull());
}

TEST_F(SimulatorLimit, AnEndlessBodyCostsNoMemory)
{
    client.get("/lun");
    const unsigned long before = peakKib(array.pid());
    EXPECT_NE(sendChunked(array, client, std::string(256 * MIB, ' ')), 200);
    EXPECT_LT(peakKib(array.pid()), before + 16 * 1024);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

TEST_F(SimulatorLimit, AnEndlessHeadEndsTheConnection)
{
    tessel_test::TlsConnection connection(array);
    ASSERT_TRUE(connection.isOpen());
    std::string piece = "GET / HTTP/1.1\r\n";
    std::size_t sent = 0;
    while (sent < 64 * MIB && connection.waitForRoom() && connection.send(piece)) {
        sent += piece.size();
        piece = "X-" + std::to_string(sent) + ": " + std::string(4000, 'x') + "\r\n";
    }
    EXPECT_LT(sent, 64 * MIB);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

/** Sends a head of so many bytes. @return whether anything was answered */
bool answersHeadOf(const tessel_test::ArraySim& array, std::size_t size)
{
    tessel_test::TlsConnection connection(array);
    std::string head = "GET / HTTP/1.1\r\nHost: x\r\n";
    while (head.size() < size) {
        head += "X: " + std::string(4000, 'x') + "\r\n";
    }
    return connection.send(head + "\r\n") && connection.receive();
}

TEST_F(SimulatorLimit, AHeadHasAQuarterOfAMebibyte)
{
    EXPECT_TRUE(answersHeadOf(array, 200 * 1024));
    EXPECT_FALSE(answersHeadOf(array, 400 * 1024));
    const std::string filter = "/hostgroup?filter=NAME:" + std::string(7000, 'n');
    for (int i = 0; i < 50; ++i) { // more than that, but not at once
        ASSERT_EQ(client.get(filter).code(), 0) << i;
    }
    EXPECT_EQ(array.counters()["connections"].asUInt(), 3U);
}

TEST_F(SimulatorLimit, ABodyOfAMebibyteIsTaken)
{
    const std::string head = R"({"NAME":"n","DESCRIPTION":")";
    const std::string body = head + std::string(MIB - head.size() - 2, 'x') + R"("})";
    EXPECT_EQ(client.post("/hostgroup", body).code(), code::MEMBER_INVALID) << "read, and too long a text";
    EXPECT_EQ(sendChunked(array, client, body), 200);
    EXPECT_EQ(sendChunked(array, client, body + " "), 413);
}

TEST_F(SimulatorLimit, ABodyWhereNoneBelongsIsNeitherReadNorTakenForARequest)
{
    const unsigned long before = array.journal().size();
    client.request("GET", "/lun", "GET /deviceManager/rest/x/smuggled HTTP/1.1\r\nHost: x\r\n\r\n");
    client.request("PRI", "/lun", "{}");
    EXPECT_EQ(array.journal().size(), before);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

TEST_F(SimulatorLimit, RefusedRequestsAreNotRemembered)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a sanitizer keeps freed memory back";
#endif
    Json::Value login;
    login["username"] = "admin";
    login["password"] = "wrong";
    login["scope"] = 0;
    const std::string filler = login.toStyledString() + std::string(MIB - 4096, ' ');
    const auto refuse = [&] {
        EXPECT_EQ(client.raw("POST", "/deviceManager/rest/xxxx/sessions", filler).code(),
                  code::LOGIN_REFUSED);
        EXPECT_EQ(client.raw("POST", "/deviceManager/rest/xxxx/lun", filler).code(), code::SESSION_INVALID);
    };
    refuse();
    const unsigned long before = peakKib(array.pid());
    for (int i = 0; i < 60; ++i) {
        refuse();
    }
    EXPECT_LT(peakKib(array.pid()), before + 16 * 1024);
}

TEST(SimulatorConnections, HaveALimit)
{
    tessel_test::ArraySimOptions options;
    options.arguments = {"--connection-limit", "3"};
    const tessel_test::ArraySim array(options);
    std::vector<std::unique_ptr<ArrayClient>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::make_unique<ArrayClient>(array));
        ASSERT_EQ(clients.back()->login().code(), 0);
    }
    ArrayClient more(array);
    EXPECT_FALSE(more.login().received);
    EXPECT_EQ(clients[0]->get("/lun").code(), 0) << "those that were there go on";
    clients.pop_back();
    while (!more.login().received) {
    }
    EXPECT_EQ(more.get("/lun").code(), 0);
}

class SimulatorControl : public ArrayTest
{
protected:
    int status(const httplib::Headers& headers, const std::string& body = "")
    {
        httplib::Client browser("127.0.0.1", static_cast<int>(array.controlPort()));
        const auto result =
            body.empty() ? browser.Get("/", headers) : browser.Post("/reset", headers, body, "text/plain");
        return result ? result->status : -1;
    }
};

TEST_F(SimulatorControl, PagesOfOthersAreRefused)
{
    const std::string own = "127.0.0.1:" + std::to_string(array.controlPort());
    EXPECT_EQ(status({{"Origin", "http://elsewhere.example"}}, "{}"), 403);
    EXPECT_EQ(status({{"Origin", "null"}}, "{}"), 403);
    EXPECT_EQ(status({{"Origin", "https://" + own}}, "{}"), 403);
    EXPECT_EQ(status({{"Origin", "file://" + own}}, "{}"), 403) << "as long as that of a page of its own";
    EXPECT_EQ(status({{"Host", "elsewhere.example:" + std::to_string(array.controlPort())}}), 403)
        << "a name of theirs that resolves to this address";
    EXPECT_EQ(client.get("/lun").code(), 0) << "nothing was reset";
    EXPECT_EQ(status({}), 200);
    EXPECT_EQ(status({{"Host", "localhost:" + std::to_string(array.controlPort())}}), 200);
    EXPECT_EQ(status({{"Origin", "http://" + own}}), 200);
}

TEST_F(SimulatorControl, BodiesHaveALimitToo)
{
    EXPECT_EQ(status({}, std::string(2 * MIB, ' ')), 413);
    httplib::Client browser("127.0.0.1", static_cast<int>(array.controlPort()));
    const auto chunked = browser.Post(
        "/reset", {},
        [](size_t, httplib::DataSink& sink) {
            sink.done();
            return true;
        },
        "text/plain");
    EXPECT_TRUE(!chunked || chunked->status == 411);
    EXPECT_EQ(client.get("/lun").code(), 0);
}

} // namespace

#include "RestFixture.h"

#include <chrono>

namespace tessel_test {
namespace {

struct Case
{
    const char* name;
    Behaviour behaviour;
    int expected; ///< 0: any failure
};

void PrintTo(const Case& which, std::ostream* out)
{
    *out << which.name;
}

class RestMisbehaviour : public RestFixture, public testing::WithParamInterface<Case>
{
};

/** libcurl 7.88 would write to a header of the first answer, which is gone: what looks at memory sees it. */
TEST_F(RestFixture, AFirstHeaderLineThatGoesOnFromNoneIsNoneOfTheAnswerBefore)
{
    MisbehavingServer server;
    const std::string body = R"({"data":{"ID":"7"},"error":{"code":0,"description":"0"}})";
    server.setDefault(
        Behaviour::raw("HTTP/1.1 200 OK\r\n going on from what is not there at all\r\nContent-Length: " +
                       std::to_string(body.size()) + "\r\n\r\n" + body));
    server.enqueue(Behaviour::success(R"({"ID":"7"})"));
    EXPECT_EQ(0, send(server.url()).result);
    for (int i = 0; i < 100; ++i) {
        send(server.url()); // an answer or none: it is libcurl's to say
    }
    server.setDefault(Behaviour::success(R"({"ID":"7"})"));
    EXPECT_EQ(0, send(server.url()).result);
}

TEST_P(RestMisbehaviour, IsAFailureAndTheNextCallWorks)
{
    MisbehavingServer server;
    RestSettings settings = trusting();
    settings.timeoutSeconds = 20;
    RestSetSettings(settings);
    server.enqueue(GetParam().behaviour);
    const Outcome outcome = send(server.url());
    EXPECT_NE(0, outcome.result);
    if (GetParam().expected != 0) {
        EXPECT_EQ(GetParam().expected, outcome.result);
    }
    EXPECT_NE(1, outcome.result);
    EXPECT_EQ(REST_ANSWER_UNREADABLE, outcome.code);
    EXPECT_EQ("", outcome.description);
    EXPECT_EQ(0U, outcome.count);

    EXPECT_EQ(0, send(server.url()).result);
}

const std::string CHUNKED = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

INSTANTIATE_TEST_SUITE_P(
    Every, RestMisbehaviour,
    testing::Values(
        Case{"CloseWithoutAnswer", Behaviour::closeWithoutAnswer(), 52},
        Case{"ResetWithoutAnswer", Behaviour::resetWithoutAnswer(), 0},
        Case{"TruncatedBody", Behaviour::truncatedBody(), 0},
        Case{"NotJson", Behaviour::notJson(), REST_ANSWER_UNREADABLE},
        Case{"EmptyBody", Behaviour::answer(""), REST_ANSWER_UNREADABLE},
        Case{"NoErrorObject", Behaviour::noErrorObject(), REST_ANSWER_UNREADABLE},
        Case{"Nested100000Deep", Behaviour::nested(100000), REST_ANSWER_UNREADABLE},
        Case{"EndlessHeaders", Behaviour::endlessHeaders(), REST_ANSWER_TOO_LARGE},
        Case{"EndlessHeaderLine", Behaviour::endlessHeaderLine(), REST_ANSWER_TOO_LARGE},
        Case{"EndlessBody", Behaviour::endlessBody(), REST_ANSWER_TOO_LARGE},
        Case{"Redirect", Behaviour::redirect("https://192.0.2.1/"), REST_ANSWER_UNREADABLE},
        Case{"NotHttp", Behaviour::raw("SSH-2.0-OpenSSH\r\n", Behaviour::Afterwards::CLOSE), 0},
        Case{"WrongChunk", Behaviour::raw(CHUNKED + "zz\r\n", Behaviour::Afterwards::CLOSE), 0},
        Case{"WrongLength",
             Behaviour::raw("HTTP/1.1 200 OK\r\nContent-Length: many\r\n\r\n", Behaviour::Afterwards::CLOSE),
             0},
        Case{"CompressedBody", Behaviour::answer("\x1f\x8b\x08", 200, "Content-Encoding: gzip\r\n"),
             REST_ANSWER_UNREADABLE}),
    [](const testing::TestParamInfo<Case>& which) { return which.param.name; });

class RestTimeouts : public RestFixture
{
protected:
    static constexpr int TIMED_OUT = 28;
};

TEST_F(RestTimeouts, AServerThatNeverAnswersARequestIsGivenUp)
{
    MisbehavingServer server;
    RestSetSettings(impatient());
    server.enqueue(Behaviour::neverAnswer());
    EXPECT_EQ(TIMED_OUT, send(server.url()).result);
    RestSetSettings(trusting());
    EXPECT_EQ(0, send(server.url()).result);
}

TEST_F(RestTimeouts, AServerThatNeverAnswersTheHandshakeIsGivenUp)
{
    MisbehavingServer::Options options;
    options.silentOnConnect = true;
    MisbehavingServer server(options);
    RestSettings settings = trusting();
    settings.connectTimeoutSeconds = 1;
    RestSetSettings(settings);
    EXPECT_EQ(TIMED_OUT, send(server.url()).result);
}

TEST_F(RestTimeouts, AnAnswerThatDribblesInIsGivenUp)
{
    MisbehavingServer server;
    RestSetSettings(impatient());
    server.enqueue(Behaviour::dribble(std::chrono::milliseconds(100)));
    EXPECT_EQ(TIMED_OUT, send(server.url()).result);
}

TEST_F(RestTimeouts, ASlowAnswerWithinTheTimeOutIsReceived)
{
    MisbehavingServer server;
    server.enqueue(Behaviour::dribble(std::chrono::milliseconds(1)));
    const Outcome outcome = send(server.url());
    EXPECT_EQ(0, outcome.result);
    EXPECT_EQ(1U, outcome.count);
}

TEST_F(RestTimeouts, AGetThatIsTriedAgainIsGivenUpToo)
{
    MisbehavingServer server;
    RestSettings settings = trusting();
    ASSERT_EQ(0, send(server.url()).result);
    settings.timeoutSeconds = 1;
    // The same trust settings: the connection would be reused, were it not for the new settings.
    RestSetSettings(settings);
    ASSERT_EQ(0, send(server.url()).result);
    server.enqueue(Behaviour::closeWithoutAnswer());
    server.setDefault(Behaviour::neverAnswer());
    EXPECT_EQ(TIMED_OUT, send(server.url()).result);
}

TEST_F(RestTimeouts, NobodyListeningIsAFailureToConnect)
{
    unsigned short port = 0;
    {
        MisbehavingServer server;
        port = server.port();
    }
    EXPECT_EQ(7, send("https://127.0.0.1:" + std::to_string(port)).result);
}

} // namespace
} // namespace tessel_test

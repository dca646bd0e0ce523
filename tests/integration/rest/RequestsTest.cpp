#include "RestFixture.h"

#include <utility>

namespace tessel_test {
namespace {

class RestRequests : public RestFixture
{
};

TEST_F(RestRequests, BodyMembersGoOutInTheirOrderAndType)
{
    MisbehavingServer server;
    RestRequest request;
    request.BodyAddProperty("username", std::string("admin"));
    request.BodyAddProperty("password", std::string("p\"w\\d\n\x01\xC3\xA4\xFF"));
    request.BodyAddProperty("scope", -1);
    request.BodyAddProperty("flag", true);
    request.BodyAddProperty("CAPACITY", 18446744073709551615ULL);
    request.BodyAddProperty("ALLOCTYPE", 1UL);
    ASSERT_EQ(0, send(request, server.url(), "/lun", REST_POST).result);
    EXPECT_EQ("{\"username\":\"admin\",\"password\":\"p\\\"w\\\\d\\n\\u0001\xC3\xA4\\ufffd\",\"scope\":-1,"
              "\"flag\":true,\"CAPACITY\":18446744073709551615,\"ALLOCTYPE\":1}",
              server.requests().at(0).body);
}

TEST_F(RestRequests, MethodsAreSentByNameAndOnlyPostAndPutCarryABody)
{
    MisbehavingServer server;
    const std::vector<std::pair<REST_REQUEST_MODE_E, std::string>> methods = {
        {REST_GET, "GET"}, {REST_POST, "POST"}, {REST_PUT, "PUT"}, {REST_DELETE, "DELETE"}};
    for (const auto& [mode, name] : methods) {
        ASSERT_EQ(0, send(server.url(), "/lun", mode).result);
        const ReceivedRequest received = server.requests().back();
        const bool carries = mode == REST_POST || mode == REST_PUT;
        EXPECT_EQ(name + " /lun HTTP/1.1", received.head.substr(0, received.head.find('\r')));
        EXPECT_EQ(carries ? "{}" : "", received.body);
        EXPECT_EQ(carries ? "2" : "", received.header("Content-Length"));
        EXPECT_EQ("application/json", received.header("Content-Type"));
        EXPECT_EQ("", received.header("Accept-Encoding"));
        EXPECT_EQ("", received.header("Expect"));
    }
}

TEST_F(RestRequests, ASessionsRequestCarriesItsRootTokenAndCookie)
{
    MisbehavingServer server;
    ASSERT_TRUE(openSession(server, "127.0.0.1", "token-1", " session=1 "));
    ASSERT_EQ(0, sendInSession("/lun/7").result);
    const ReceivedRequest received = server.requests().at(0);
    EXPECT_EQ("/deviceManager/rest/dev-9/lun/7", received.target());
    EXPECT_NE(std::string::npos, received.head.find("\r\niBaseToken: token-1\r\n"));
    EXPECT_NE(std::string::npos, received.head.find("\r\nCookie: session=1\r\n"));
}

TEST_F(RestRequests, ASessionsPathBeginsWithASlash)
{
    MisbehavingServer server;
    ASSERT_TRUE(openSession(server));
    for (const char* path : {"", "lun", " /lun"}) {
        EXPECT_EQ(REST_BAD_REQUEST, sendInSession(path).result) << path;
    }
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(RestRequests, WithAHeaderThatCannotBeSentAreNotSentInASessionEither)
{
    MisbehavingServer server;
    ASSERT_TRUE(openSession(server));
    RestRequest request;
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, "two\r\nlines");
    RestResponse response;
    std::vector<std::string> headers;
    EXPECT_EQ(REST_BAD_REQUEST, request.SendRequest(sessionKey(), "/lun", REST_GET, response, headers, true));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(RestRequests, ASessionsTokenDoesNotGoToAnotherServer)
{
    MisbehavingServer array;
    MisbehavingServer other;
    ASSERT_TRUE(openSession(array));
    RestRequest request;
    RestResponse response;
    std::vector<std::string> headers;
    ASSERT_EQ(0, request.SendRequest(sessionKey(), "/lun", REST_GET, response, headers, true));
    ASSERT_EQ(0, send(request, other.url(), "/lun", REST_GET).result);
    EXPECT_EQ("token-1", array.requests().at(0).header("iBaseToken"));
    EXPECT_EQ("", other.requests().at(0).header("iBaseToken"));
    EXPECT_EQ("", other.requests().at(0).header("Cookie"));
}

TEST_F(RestRequests, AddedHeadersAreSentWithoutOuterBlanks)
{
    MisbehavingServer server;
    RestRequest request;
    request.HeaderAddProperty(HTTP_HEADER_TOKEN, "\t token ");
    request.HeaderAddProperty(HTTP_HEADER_COOKIE, " a=b; c=d");
    ASSERT_EQ(0, send(request, server.url(), "/x", REST_DELETE).result);
    const std::string head = server.requests().at(0).head;
    EXPECT_NE(std::string::npos, head.find("\r\niBaseToken: token\r\n"));
    EXPECT_NE(std::string::npos, head.find("\r\nCookie: a=b; c=d\r\n"));
}

TEST_F(RestRequests, AHeaderWithoutANameIsNotSent)
{
    MisbehavingServer server;
    RestRequest request;
    request.HeaderAddProperty(static_cast<HTTP_HEADER_E>(9), "value");
    EXPECT_EQ(REST_BAD_REQUEST, send(request, server.url(), "/x", REST_GET).result);
    EXPECT_EQ(0U, server.accepts());
}

TEST_F(RestRequests, AHeaderValueCannotAddALine)
{
    MisbehavingServer server;
    for (const std::string& value : {std::string("a\r\nX-Forged: 1"), std::string("a\nb"),
                                     std::string("a\rb"), std::string("a\0b", 3)}) {
        RestRequest request;
        request.HeaderAddProperty(HTTP_HEADER_TOKEN, value);
        EXPECT_EQ(REST_BAD_REQUEST, send(request, server.url(), "/x", REST_GET).result);
        EXPECT_FALSE(openSession(server, "127.0.0.1", value));
        EXPECT_FALSE(openSession(server, "127.0.0.1", "t", value));
    }
    EXPECT_EQ(0U, server.accepts());
}

TEST_F(RestRequests, PathsAreSentAsTheyAreButForBytesThatMayNotStandThere)
{
    MisbehavingServer server;
    const std::vector<std::pair<std::string, std::string>> paths = {
        {"/a/../b/./c", "/a/../b/./c"},
        {"//x", "//x"},
        {"/lun/associate?filter=NAME:my db and ID:7&TYPE=11&range=[0-100]",
         "/lun/associate?filter=NAME:my%20db%20and%20ID:7&TYPE=11&range=[0-100]"},
        {"/lun/%2e%2E%41%", "/lun/%2e%2E%41%"},
        {"/x\r\nX-Forged: 1", "/x%0D%0AX-Forged:%201"},
        {"/\xC3\xA4\"<>\\^`{|}#", "/%C3%A4%22%3C%3E%5C%5E%60%7B%7C%7D%23"}};
    for (const auto& [path, sent] : paths) {
        ASSERT_EQ(0, send(server.url(), path).result) << path;
        EXPECT_EQ(sent, server.requests().back().target());
        EXPECT_EQ("", server.requests().back().header("X-Forged"));
    }
}

TEST_F(RestRequests, Ipv6AddressesAreReachedWithAndWithoutBrackets)
{
    MisbehavingServer::Options options;
    options.address = "::1";
    MisbehavingServer server(options);
    const std::string port = std::to_string(server.port());
    EXPECT_EQ(0, send("https://::1:" + port).result);
    EXPECT_EQ(0, send("https://[::1]:" + port + "/").result);
    ASSERT_TRUE(openSession(server, "::1"));
    EXPECT_EQ(0, sendInSession("/lun").result);
    EXPECT_EQ(1U, server.handshakes());
    EXPECT_EQ("[::1]:" + port, server.requests().at(0).header("Host"));
}

TEST_F(RestRequests, WhatCannotBeSentIsRefusedWithoutAConnection)
{
    MisbehavingServer server;
    const std::string port = std::to_string(server.port());
    const std::vector<std::string> urls = {std::string(""),
                                           std::string("127.0.0.1"),
                                           "http://127.0.0.1:" + port,
                                           "ftp://127.0.0.1:" + port,
                                           "https://user@127.0.0.1:" + port,
                                           "https://127.0.0.1:" + port + "/path",
                                           "https://127.0.0.1:0",
                                           std::string("https://127.0.0.1:65536"),
                                           "https://127.0.0.1 :" + port,
                                           "https://127.0.0.1\r\n:" + port,
                                           "https://[127.0.0.1]:" + port,
                                           std::string("https://"),
                                           "https://fe80::1%lo:" + port,
                                           "https://127.0.0.1:" + port + std::string("\0", 1)};
    for (const std::string& url : urls) {
        EXPECT_EQ(REST_BAD_REQUEST, send(url).result) << url;
    }
    EXPECT_EQ(REST_BAD_REQUEST, send(server.url(), "").result);
    EXPECT_EQ(REST_BAD_REQUEST, send(server.url(), "lun").result);
    EXPECT_EQ(0U, server.accepts());
}

TEST_F(RestRequests, WithoutASessionNothingIsSent)
{
    RestRequest request;
    RestResponse response;
    std::vector<std::string> headers = {"left over"};
    EXPECT_EQ(REST_NO_SESSION, request.SendRequest(0, "/lun", REST_GET, response, headers, true));
    EXPECT_EQ(REST_NO_SESSION, request.SendRequest(sessionKey(), "/lun", REST_GET, response, headers, true));
    EXPECT_TRUE(headers.empty());
}

TEST_F(RestRequests, ResponseHeadersComeInUsualCapitalsFromTheFinalResponseOnly)
{
    MisbehavingServer server;
    server.enqueue(
        Behaviour::raw("HTTP/1.1 100 Continue\r\nX-Interim: 1\r\n\r\n"
                       "HTTP/1.1 200 OK\r\nset-cookie:  session=ismsession=7; path=/ \r\nSET-COOKIE: b=2\r\n"
                       "etag: x\r\nTransfer-Encoding: chunked\r\n\r\n"
                       "25\r\n{\"error\":{\"code\":0,\"description\":\"\"}}\r\n0\r\nX-Trailer: 1\r\n\r\n"));
    const Outcome outcome = send(server.url());
    ASSERT_EQ(0, outcome.result);
    EXPECT_EQ((std::vector<std::string>{"Set-Cookie: session=ismsession=7; path=/", "Set-Cookie: b=2",
                                        "ETag: x", "Transfer-Encoding: chunked"}),
              outcome.headers);
}

TEST_F(RestRequests, WithoutALimitOfTimeAreAnswered)
{
    MisbehavingServer server;
    for (const auto& [connecting, whole] : {std::pair(0L, 0L), std::pair(0L, 60L), std::pair(60L, 0L)}) {
        RestSettings settings = RestGetSettings();
        settings.connectTimeoutSeconds = connecting;
        settings.timeoutSeconds = whole;
        RestSetSettings(settings);
        EXPECT_EQ(0, send(server.url()).result) << connecting << ", " << whole;
    }
}

TEST_F(RestRequests, TheHttpStatusDoesNotMatterWhereAnAnswerIsPresent)
{
    MisbehavingServer server;
    for (const int status : {200, 302, 401, 404, 500, 503}) {
        server.enqueue(Behaviour::answer(
            R"({"data":[{"ID":"1"},{"ID":"2"}],"error":{"code":"7","description":"d"}})", status));
        const Outcome outcome = send(server.url());
        EXPECT_EQ(0, outcome.result) << status;
        EXPECT_EQ(7, outcome.code);
        EXPECT_EQ("d", outcome.description);
        EXPECT_EQ(2U, outcome.count);
    }
}

TEST_F(RestRequests, AFailureLeavesNothingOfAnEarlierAnswerInTheResponse)
{
    MisbehavingServer server;
    RestRequest request;
    RestResponse response;
    std::vector<std::string> headers;
    std::string description;
    request.SetServerUrl(server.url());
    server.enqueue(Behaviour::success("{\"ID\":\"7\"}"));
    server.enqueue(Behaviour::notJson());
    ASSERT_EQ(0, request.SendRequest("/lun/7", REST_GET, response, headers, true));
    EXPECT_EQ(1U, response.count());
    EXPECT_EQ("7", response[0]["ID"].asString());
    EXPECT_TRUE(response[1].isNull());
    ASSERT_EQ(REST_ANSWER_UNREADABLE, request.SendRequest("/lun/7", REST_GET, response, headers, true));
    EXPECT_EQ(0U, response.count());
    EXPECT_EQ(REST_ANSWER_UNREADABLE, response.getResponseCode(description));
}

} // namespace
} // namespace tessel_test

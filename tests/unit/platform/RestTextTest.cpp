#include <FailureNote.h>
#include <HeaderLines.h>
#include <JsonBody.h>
#include <RequestTarget.h>
#include <ServerAddress.h>
#include <TransferOptions.h>

#include <ovra/rest/OvraTool.h>
#include <ovra/rest/RestResponse.h>

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace ovra::rest {
namespace {

TEST(RequestTarget, KeepsEveryByteThatMayStandInIt)
{
    std::string raw;
    for (int byte = 0x21; byte < 0x7F; ++byte) {
        if (std::string("\"#<>\\^`{|}").find(static_cast<char>(byte)) == std::string::npos) {
            raw += static_cast<char>(byte);
        }
    }
    EXPECT_EQ(raw, encodeRequestTarget(raw));
}

TEST(RequestTarget, EncodesEveryOtherByte)
{
    std::string others = "\"#<>\\^`{|}";
    for (int byte = 0; byte <= 0x20; ++byte) {
        others += static_cast<char>(byte);
    }
    for (int byte = 0x7F; byte <= 0xFF; ++byte) {
        others += static_cast<char>(byte);
    }
    static const char* digits = "0123456789ABCDEF";
    for (const char c : others) {
        const auto value = static_cast<unsigned char>(c);
        EXPECT_EQ(std::string("%") + digits[value / 16] + digits[value % 16], encodeRequestTarget({c}));
    }
}

TEST(HeaderNames, GetTheirUsualCapitals)
{
    EXPECT_EQ("Set-Cookie", canonicalHeaderName("set-cookie"));
    EXPECT_EQ("Set-Cookie", canonicalHeaderName("SET-COOKIE"));
    EXPECT_EQ("Content-Type", canonicalHeaderName("cONTENT-tYPE"));
    EXPECT_EQ("ETag", canonicalHeaderName("etag"));
    EXPECT_EQ("WWW-Authenticate", canonicalHeaderName("www-authenticate"));
    EXPECT_EQ("X--A-", canonicalHeaderName("x--a-"));
    EXPECT_EQ("", canonicalHeaderName(""));
}

TEST(HeaderLines, KeepOnlyTheFinalHead)
{
    HeaderLines lines;
    for (const char* line : {"X-Before: 1\r\n", "HTTP/1.1 100 Continue\r\n", "a: 1\r\n", "\r\n",
                             "HTTP/1.1 200 OK\r\n", "set-cookie:a=b;\r\n", "no colon\r\n", "folded: one\r\n",
                             " \t two \r\n", "\r\n", "Trailer: 1\r\n"}) {
        lines.add(line);
    }
    EXPECT_EQ((std::vector<std::string>{"Set-Cookie: a=b;", "Folded: one two"}), lines.lines());
}

TEST(HeaderValues, WithALineEndOrNulCannotBeSent)
{
    EXPECT_TRUE(isSendableHeaderValue("a b\tc;="));
    EXPECT_TRUE(isSendableHeaderValue(""));
    EXPECT_FALSE(isSendableHeaderValue("a\rb"));
    EXPECT_FALSE(isSendableHeaderValue("a\n"));
    EXPECT_FALSE(isSendableHeaderValue(std::string_view("a\0", 2)));
}

TEST(FailureNotes, SayNothingOfASystemThatSaidNothing)
{
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), curl_easy_cleanup);
    noteTransfer(handle.get(), CURLE_COULDNT_CONNECT, false, "nobody is there", {});
    EXPECT_STREQ("nobody is there", failureNote().text);
    EXPECT_EQ(REST_NOT_CONNECTED, failureNote().phase);
}

TEST(FailureNotes, OfARequestWithoutAnAddressSayWhatFailedAllTheSame)
{
    failureNote() = RestFailure{};
    noteResult(REST_INTERNAL_ERROR, std::nullopt);
    EXPECT_STREQ("a failure on this side", failureNote().text);
    EXPECT_EQ(REST_INTERNAL_ERROR, failureNote().result);
}

TEST(HeaderLists, HaveNoLineForAValueThatIsEmptyOrBlank)
{
    HttpRequest request;
    request.headers = {{"Empty", ""}, {"Blank", " \t"}, {"iBaseToken", " x "}};
    HeaderList list(request);
    std::vector<std::string> lines;
    for (const curl_slist* item = list.get(); item != nullptr; item = item->next) {
        lines.emplace_back(item->data);
    }
    EXPECT_EQ((std::vector<std::string>{"Content-Type: application/json", "Expect:", "iBaseToken: x"}),
              lines);
}

TEST(JsonStrings, AreEscapedSoThatTheyReadBackTheSame)
{
    EXPECT_EQ(R"("a\"b\\c\n\r\t")", jsonString("a\"b\\c\n\r\t"));
    EXPECT_EQ("\"\\u0000\\u001f\x7F\"", jsonString(std::string("\0\x1F\x7F", 3)));
    EXPECT_EQ("\"\xE2\x82\xAC/\"", jsonString("\xE2\x82\xAC/"));
}

TEST(JsonStrings, ReplaceBytesThatAreNotUtf8)
{
    EXPECT_EQ(R"("a\ufffdb")", jsonString("a\xFF"
                                          "b"));
    EXPECT_EQ(R"("\ufffd\ufffd")", jsonString("\xC0\x80"));                     // overlong
    EXPECT_EQ(R"("\ufffd\ufffd\ufffd")", jsonString("\xED\xA0\x80"));           // surrogate
    EXPECT_EQ(R"("\ufffd\ufffd\ufffd\ufffd")", jsonString("\xF4\x90\x80\x80")); // above U+10FFFF
    EXPECT_EQ(R"("\ufffd\ufffd")", jsonString("\xE2\x82"));                     // cut short
    EXPECT_EQ("\"\xF0\x9F\x92\xBE\"", jsonString("\xF0\x9F\x92\xBE"));
}

TEST(JsonBodies, KeepTheOrderOfTheirMembers)
{
    JsonBody body;
    EXPECT_EQ("{}", body.text());
    body.add("z", std::string("1"));
    body.add("a", 1);
    body.add("m", false);
    body.add("z", std::string("2"));
    EXPECT_EQ(R"({"z":"2","a":1,"m":false})", body.text());
}

TEST(JsonBodies, WriteNumbersWhole)
{
    JsonBody body;
    body.add("i", std::numeric_limits<int>::min());
    body.add("l", std::numeric_limits<unsigned long>::max());
    body.add("ll", std::numeric_limits<unsigned long long>::max());
    EXPECT_EQ(R"({"i":-2147483648,"l":18446744073709551615,"ll":18446744073709551615})", body.text());
}

TEST(ServerAddresses, AreReadFromUrls)
{
    const auto origin = [](const std::string& url) {
        const auto address = ServerAddress::fromUrl(url);
        return address ? address->origin() : "";
    };
    EXPECT_EQ("https://192.0.2.7:8088", origin("https://192.0.2.7:8088"));
    EXPECT_EQ("https://192.0.2.7:8088", origin("HTTPS://192.0.2.7:8088/"));
    EXPECT_EQ("https://array.example:443", origin("https://array.example"));
    EXPECT_EQ("https://[fd00::7]:8088", origin("https://[fd00::7]:8088"));
    EXPECT_EQ("https://[fd00::7]:8088", origin("https://fd00::7:8088"));
    EXPECT_EQ("https://[fd00::7]:443", origin("https://[fd00::7]"));
    EXPECT_EQ("https://[1:2:3:4:5:6:7:8]:443", origin("https://1:2:3:4:5:6:7:8"));
    for (const char* url :
         {"", "https://", "https:///", "http://a:1", "https://a:", "https://a:x", "https://a:+1",
          "https://a:1x", "https://a:0", "https://a:65536", "https://a:4294967297", "https://a/b",
          "https://a?b", "https://u@a", "https://[a]:1", "https://[]:1", "https://a b", "a:1"}) {
        EXPECT_EQ("", origin(url)) << url;
    }
}

TEST(CheckIPValid, AcceptsAddressesAndNothingElse)
{
    for (const char* ip : {"0.0.0.0", "192.0.2.7", "255.255.255.255", "::", "::1", "fd00::7",
                           "1:2:3:4:5:6:7:8", "::ffff:192.0.2.7", "FE80::A"}) {
        EXPECT_TRUE(OvraTool::CheckIPValid(ip)) << ip;
    }
    for (const char* ip : {"", " ", "192.0.2", "192.0.2.256", "192.0.2.7 ", " 192.0.2.7", "192.0.2.7\n",
                           "1.2.3.4.5", "0x7f.0.0.1", "127.1", "localhost", "[::1]", "fe80::1%eth0",
                           ":::", "1:2:3", "::1/64", "192.0.2.7:80", "12345::"}) {
        EXPECT_FALSE(OvraTool::CheckIPValid(ip)) << ip;
    }
    EXPECT_FALSE(OvraTool::CheckIPValid(std::string("192.0.2.7\0", 10)));
    EXPECT_FALSE(OvraTool::CheckIPValid(std::string("192.0.2.7\0x", 11)));
}

TEST(DecimalTexts, AreReadUpToTheFirstOtherCharacter)
{
    EXPECT_EQ(0UL, RestResponse::str2ul(""));
    EXPECT_EQ(42UL, RestResponse::str2ul("42"));
    EXPECT_EQ(42UL, RestResponse::str2ul(" \t42 blocks"));
    EXPECT_EQ(7UL, RestResponse::str2ul("007"));
    EXPECT_EQ(0UL, RestResponse::str2ul("-1"));
    EXPECT_EQ(0UL, RestResponse::str2ul("+1"));
    EXPECT_EQ(0UL, RestResponse::str2ul("x1"));
    EXPECT_EQ(0UL, RestResponse::str2ul("0x10"));
    EXPECT_EQ(18446744073709551615ULL, RestResponse::str2ull("18446744073709551615"));
    EXPECT_EQ(18446744073709551615ULL, RestResponse::str2ull("18446744073709551616"));
    EXPECT_EQ(18446744073709551615ULL, RestResponse::str2ull(std::string(40, '9')));
}

} // namespace
} // namespace ovra::rest

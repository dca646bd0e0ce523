#include <Answer.h>
#include <HeaderLines.h>
#include <JsonBody.h>
#include <SessionRegistry.h>
#include <Transfer.h>
#include <ovra/text/Secret.h>

#include <gtest/gtest.h>

#include <cstring>
#include <malloc.h>
#include <new>
#include <optional>

namespace {

/** Longer than what stands in a text object itself, and nothing that memory holds by chance. */
constexpr char SECRET[] = "Sesame-open-yourself-5c1f-a-secret-of-forty-odd-letters";

thread_local bool looking = false;
thread_local unsigned foundInFreed = 0;

} // namespace

extern "C" void __libc_free(void* memory);

// In the place of the C library's: everything that is given back comes by here.
extern "C" void free(void* memory)
{
    if (looking && memory != nullptr &&
        memmem(memory, malloc_usable_size(memory), SECRET, sizeof(SECRET) - 1) != nullptr) {
        ++foundInFreed;
    }
    __libc_free(memory);
}

namespace ovra::rest {
namespace {

/** How many pieces of memory were given back with the secret in them. */
template <class Use>
unsigned leftBehindBy(Use use)
{
    foundInFreed = 0;
    looking = true;
    use();
    looking = false;
    return foundInFreed;
}

TEST(Secrets, OfAnOrdinaryTextAreLeftBehind)
{
    EXPECT_EQ(1U, leftBehindBy([] { const std::string text = SECRET; }));
}

TEST(Secrets, AreWipedWhenTheirTextGoesGrowsOrIsReplaced)
{
    EXPECT_EQ(0U, leftBehindBy([] {
                  SecretText text = SECRET;
                  for (int i = 0; i < 200; ++i) {
                      text += "and more";
                  }
                  text = SECRET;
                  SecretText copy = text;
                  const SecretText moved = std::move(copy);
                  text = "short";
              }));
}

TEST(Secrets, ThatAreShortAreWipedInTheObjectItself)
{
    alignas(SecretText) unsigned char memory[sizeof(SecretText)] = {};
    auto* const text = new (memory) SecretText("Sesame");
    ASSERT_NE(nullptr, memmem(memory, sizeof(memory), "Sesame", 6));
    *text = "S"; // what stood behind it is still there
    text->~SecretText();
    EXPECT_EQ(nullptr, memmem(memory, sizeof(memory), "same", 4));
}

TEST(Secrets, OfARequestsBodyAreWiped)
{
    EXPECT_EQ(0U, leftBehindBy([] {
                  JsonBody body;
                  for (const char* key : {"a", "password", "b", "c", "d", "password"}) {
                      body.add(key, std::string_view(SECRET));
                  }
                  HttpRequest request;
                  request.body = body.text();
              }));
}

TEST(Secrets, OfARequestsHeadersAreWiped)
{
    EXPECT_EQ(0U, leftBehindBy([] {
                  HttpRequest request;
                  setHeader(request.headers, "iBaseToken", SECRET);
                  setHeader(request.headers, "iBaseToken", "replaced");
                  setHeader(request.headers, "Cookie", SECRET);
                  setHeader(request.headers, "A-Third", "makes room");
              }));
}

TEST(Secrets, OfASessionAreWiped)
{
    auto* const identity = reinterpret_cast<CDeviceManagerImpl*>(0x1000);
    const std::string secret = SECRET;
    EXPECT_EQ(0U, leftBehindBy([&] {
                  SessionRegistry::instance().addUser(identity, "d", "192.0.2.7", 1, secret, secret, true);
                  SessionRegistry::instance().addUser(identity, "d", "192.0.2.7", 1, "t", secret, true);
                  SessionRegistry::instance().removeUser(identity);
              }));
}

TEST(Secrets, OfResponseHeadersAreWiped)
{
    const std::string line = std::string("set-cookie: ") + SECRET + "\r\n";
    EXPECT_EQ(0U, leftBehindBy([&] {
                  HeaderLines lines;
                  lines.add("HTTP/1.1 200 OK\r\n");
                  lines.add(line);
                  lines.add(" folded\r\n");
                  lines.add("another: one\r\n");
              }));
}

TEST(Secrets, OfAnAnswerAreWiped)
{
    const std::string text = std::string(R"({"data":[{"iBaseToken":")") + SECRET + R"(","deep":[[")" +
                             SECRET + R"("]]}],"error":{"code":0,"description":")" + SECRET +
                             R"("},"more":")" + SECRET + "\"}";
    std::optional<Answer> answer = parseAnswer(text);
    ASSERT_TRUE(answer);
    ASSERT_EQ(SECRET, answer->records[0]["iBaseToken"].asString());
    ASSERT_STREQ(SECRET, answer->description.c_str());
    EXPECT_EQ(0U, leftBehindBy([&] { answer.reset(); }));
}

} // namespace
} // namespace ovra::rest

#include "RestFixture.h"

#include <ovra/log/LogAPI.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tessel_test {
namespace {

/** The environment is read once, when it is first asked for: before the fixture that sets the trust. */
struct FaultyEnvironment
{
    FaultyEnvironment() { setenv("OVRA_REST_TIMEOUT_S", "soon", 1); }
};

class RestWarnings : private FaultyEnvironment, public RestFixture
{
};

size_t count(const std::string& text, const std::string& part)
{
    size_t times = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++times;
    }
    return times;
}

TEST_F(RestWarnings, OfTheEnvironmentAndTheOptOutAreLoggedOnceAndSecretsAreNot)
{
    const Folder folder;
    ASSERT_EQ(0, LogInit("rest_tests", "", nullptr, folder.path().c_str()));
    RestSettings settings = trusting();
    settings.insecure = true;
    RestSetSettings(settings);
    MisbehavingServer server;
    for (int i = 0; i < 2; ++i) {
        RestRequest request;
        request.BodyAddProperty("password", std::string("secret-1"));
        request.HeaderAddProperty(HTTP_HEADER_TOKEN, "secret-2");
        ASSERT_EQ(0, send(request, server.url(), "/x", REST_POST).result);
    }
    LogFini("rest_tests");

    std::string log;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        std::ifstream file(entry.path());
        log.append(std::istreambuf_iterator<char>(file), {});
    }
    EXPECT_EQ(1U, count(log, " WARN Ovra-Rest-API OVRA_REST_TIMEOUT_S is not a number of seconds"));
    EXPECT_EQ(1U, count(log, " WARN Ovra-Rest-API servers are not verified"));
    EXPECT_EQ(2U, count(log, "Ovra-Rest-API"));
    EXPECT_EQ(0U, count(log, "secret"));
}

} // namespace
} // namespace tessel_test

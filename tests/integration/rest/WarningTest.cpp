#include "RestFixture.h"

#include <ovra/log/LogAPI.h>

#include <filesystem>
#include <fstream>

namespace tessel_test {
namespace {

class RestWarnings : public RestFixture
{
};

TEST_F(RestWarnings, TheOptOutIsLoggedOnceAndSecretsAreNot)
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
    const size_t warning = log.find(" WARN Ovra-Rest-API servers are not verified");
    EXPECT_NE(std::string::npos, warning);
    EXPECT_EQ(std::string::npos, log.find("Ovra-Rest-API", log.find("Ovra-Rest-API") + 1));
    EXPECT_EQ(std::string::npos, log.find("secret"));
}

} // namespace
} // namespace tessel_test

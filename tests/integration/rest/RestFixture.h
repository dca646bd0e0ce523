#ifndef TESSEL_TESTS_RESTFIXTURE_H
#define TESSEL_TESTS_RESTFIXTURE_H

#include <MisbehavingServer.h>

#include <ovra/rest/RestRequest.h>
#include <ovra/rest/RestSettings.h>
#include <ovra/rest/UserManager.h>

#include <gtest/gtest.h>

namespace tessel_test {

/** What one exchange gave. */
struct Outcome
{
    int result = -1;
    int code = -1;
    std::string description;
    unsigned long count = 0;
    std::vector<std::string> headers;
};

/** Trusts the test authority and sends requests through the library. */
class RestFixture : public testing::Test
{
protected:
    static constexpr uintptr_t IDENTITY = 0x5500001234;

    RestFixture() { RestSetSettings(trusting()); }
    ~RestFixture() override
    {
        CUserManager::getInstance()->removeUser(identity());
        RestSetSettings(RestSettings());
    }

    static RestSettings trusting()
    {
        RestSettings settings;
        settings.caFile = TestCertificates::instance().caFile();
        settings.connectTimeoutSeconds = 20;
        settings.timeoutSeconds = 60;
        return settings;
    }

    /** One-second time-outs, for servers that never answer. */
    static RestSettings impatient()
    {
        RestSettings settings = trusting();
        settings.connectTimeoutSeconds = 1;
        settings.timeoutSeconds = 1;
        return settings;
    }

    static CDeviceManagerImpl* identity() { return reinterpret_cast<CDeviceManagerImpl*>(IDENTITY); }
    static unsigned int sessionKey() { return static_cast<unsigned int>(IDENTITY & 0xFFFFFFFF); }

    /** A request without session, with the members and headers that it was given. */
    static Outcome send(RestRequest& request, const std::string& url, const std::string& path,
                        REST_REQUEST_MODE_E mode)
    {
        RestResponse response;
        Outcome outcome;
        request.SetServerUrl(url);
        outcome.result = request.SendRequest(path, mode, response, outcome.headers, true);
        return read(response, std::move(outcome));
    }

    static Outcome send(const std::string& url, const std::string& path = "/x",
                        REST_REQUEST_MODE_E mode = REST_GET)
    {
        RestRequest request;
        return send(request, url, path, mode);
    }

    static Outcome sendInSession(const std::string& path, REST_REQUEST_MODE_E mode = REST_GET)
    {
        RestRequest request;
        RestResponse response;
        Outcome outcome;
        outcome.result = request.SendRequest(sessionKey(), path, mode, response, outcome.headers, true);
        return read(response, std::move(outcome));
    }

    static bool openSession(const MisbehavingServer& server, const std::string& address = "127.0.0.1",
                            const std::string& token = "token-1", const std::string& cookie = "session=1")
    {
        return CUserManager::getInstance()->addUser(identity(), "dev-9", address, server.port(), token,
                                                    cookie, true);
    }

private:
    static Outcome read(RestResponse& response, Outcome outcome)
    {
        outcome.code = response.getResponseCode(outcome.description);
        outcome.count = response.count();
        return outcome;
    }
};

} // namespace tessel_test

#endif

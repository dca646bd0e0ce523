#include "RestFixture.h"

#include <openssl/ssl.h>

namespace tessel_test {
namespace {

class RestTrust : public RestFixture
{
protected:
    static MisbehavingServer::Options showing(Certificate certificate)
    {
        MisbehavingServer::Options options;
        options.certificate = certificate;
        return options;
    }
};

constexpr int NOT_TRUSTED = 60;
constexpr int PIN_MISMATCH = 90;

TEST_F(RestTrust, ACertificateOfAnotherAuthorityIsRefused)
{
    MisbehavingServer server(showing(Certificate::OtherCa));
    EXPECT_EQ(NOT_TRUSTED, send(server.url()).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, TheSystemsAuthoritiesDoNotVouchForTheTestAuthority)
{
    RestSettings settings = trusting();
    settings.caFile.clear();
    RestSetSettings(settings);
    MisbehavingServer server;
    EXPECT_EQ(NOT_TRUSTED, send(server.url()).result);
}

TEST_F(RestTrust, AnExpiredCertificateIsRefused)
{
    MisbehavingServer server(showing(Certificate::Expired));
    EXPECT_EQ(NOT_TRUSTED, send(server.url()).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, ACertificateForAnotherHostIsRefused)
{
    MisbehavingServer server(showing(Certificate::WrongHost));
    EXPECT_EQ(NOT_TRUSTED, send(server.url()).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, AHostNameIsVerifiedToo)
{
    MisbehavingServer server;
    EXPECT_EQ(0, send("https://localhost:" + std::to_string(server.port())).result);
}

TEST_F(RestTrust, APinAloneIsProofEnough)
{
    for (const Certificate certificate :
         {Certificate::OtherCa, Certificate::Expired, Certificate::WrongHost}) {
        RestSettings settings = trusting();
        settings.caFile.clear();
        settings.pinnedKey = TestCertificates::instance().pinnedKey(certificate);
        RestSetSettings(settings);
        MisbehavingServer server(showing(certificate));
        EXPECT_EQ(0, send(server.url()).result);
    }
}

TEST_F(RestTrust, AnotherKeyThanThePinnedOneIsRefused)
{
    RestSettings settings = trusting();
    settings.caFile.clear();
    settings.pinnedKey = TestCertificates::instance().pinnedKey(Certificate::Good);
    RestSetSettings(settings);
    MisbehavingServer server(showing(Certificate::OtherCa));
    EXPECT_EQ(PIN_MISMATCH, send(server.url()).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, OneOfSeveralPinsSuffices)
{
    const TestCertificates& certificates = TestCertificates::instance();
    RestSettings settings = trusting();
    settings.caFile.clear();
    settings.pinnedKey =
        certificates.pinnedKey(Certificate::Good) + ";" + certificates.pinnedKey(Certificate::OtherCa);
    RestSetSettings(settings);
    MisbehavingServer server(showing(Certificate::OtherCa));
    EXPECT_EQ(0, send(server.url()).result);
}

TEST_F(RestTrust, APinBesideACaFileIsARequirementMore)
{
    RestSettings settings = trusting();
    settings.pinnedKey = TestCertificates::instance().pinnedKey(Certificate::OtherCa);
    RestSetSettings(settings);
    MisbehavingServer good;
    EXPECT_EQ(PIN_MISMATCH, send(good.url()).result);
    MisbehavingServer untrusted(showing(Certificate::OtherCa));
    EXPECT_EQ(NOT_TRUSTED, send(untrusted.url()).result);
}

TEST_F(RestTrust, APinThatIsNoPinTrustsNobody)
{
    RestSettings settings = trusting();
    settings.caFile.clear();
    for (const char* pin : {"sha256//", "nonsense", " ", "sha256//AAAA"}) {
        settings.pinnedKey = pin;
        RestSetSettings(settings);
        MisbehavingServer server;
        EXPECT_NE(0, send(server.url()).result) << pin;
        EXPECT_EQ(0U, server.requestCount());
    }
}

TEST_F(RestTrust, ACaFileThatIsMissingTrustsNobody)
{
    RestSettings settings = trusting();
    settings.caFile = "/nonexistent/ca.pem";
    RestSetSettings(settings);
    MisbehavingServer server;
    EXPECT_NE(0, send(server.url()).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, OnlyTheExplicitOptOutTrustsEverybody)
{
    RestSettings settings = trusting();
    settings.caFile.clear();
    settings.insecure = true;
    for (const std::string& pin :
         {std::string(), TestCertificates::instance().pinnedKey(Certificate::Good)}) {
        settings.pinnedKey = pin;
        RestSetSettings(settings);
        MisbehavingServer server(showing(Certificate::Expired));
        EXPECT_EQ(0, send(server.url()).result) << pin;
    }
}

TEST_F(RestTrust, AConnectionMadeWithoutProofIsNotUsedOnceProofIsAskedFor)
{
    RestSettings settings = trusting();
    settings.caFile.clear();
    settings.insecure = true;
    RestSetSettings(settings);
    MisbehavingServer server(showing(Certificate::OtherCa));
    ASSERT_EQ(0, send(server.url()).result);
    RestSetSettings(trusting());
    EXPECT_EQ(NOT_TRUSTED, send(server.url()).result);
    EXPECT_EQ(1U, server.requestCount());
}

TEST_F(RestTrust, Tls11IsRefused)
{
    MisbehavingServer::Options options;
    options.maximumTlsVersion = TLS1_1_VERSION;
    MisbehavingServer server(options);
    EXPECT_NE(0, send(server.url()).result);
    EXPECT_EQ(0U, server.handshakes());
}

TEST_F(RestTrust, Tls12IsAccepted)
{
    MisbehavingServer::Options options;
    options.maximumTlsVersion = TLS1_2_VERSION;
    MisbehavingServer server(options);
    EXPECT_EQ(0, send(server.url()).result);
}

TEST_F(RestTrust, PlainHttpIsRefused)
{
    MisbehavingServer::Options options;
    options.plainHttp = true;
    MisbehavingServer server(options);
    EXPECT_NE(0, send(server.url()).result);
    EXPECT_EQ(REST_BAD_REQUEST, send("http://127.0.0.1:" + std::to_string(server.port())).result);
    EXPECT_EQ(0U, server.requestCount());
}

TEST_F(RestTrust, ARedirectIsNotFollowed)
{
    MisbehavingServer other;
    MisbehavingServer server;
    server.setDefault(Behaviour::redirect(other.url() + "/elsewhere"));
    EXPECT_EQ(REST_ANSWER_UNREADABLE, send(server.url()).result);
    EXPECT_EQ(0U, other.accepts());
}

TEST_F(RestTrust, ProxiesOfTheEnvironmentAreNotUsed)
{
    MisbehavingServer proxy;
    for (const char* name : {"https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY"}) {
        setenv(name, proxy.url().c_str(), 1);
    }
    MisbehavingServer server;
    EXPECT_EQ(0, send(server.url()).result);
    EXPECT_EQ(0U, proxy.accepts());
}

} // namespace
} // namespace tessel_test

#include "Cli.h"
#include "support/MisbehavingServer.h"

using tessel_test::Certificate;
using tessel_test::MisbehavingServer;
using tessel_test::TestCertificates;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

TEST_F(CliTest, FingerprintShowsTheCertificateAndThePinThatTrustsIt)
{
    const std::string place = array.ip() + ":" + std::to_string(array.port());
    const Outcome outcome = Cli().json({"fingerprint", place});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const Json::Value shown = outcome.json();
    EXPECT_EQ(shown["pin"].asString(), array.pinnedKey());
    EXPECT_TRUE(shown["inForce"].asBool());
    EXPECT_FALSE(shown["verified"].asBool());
    const std::string certificate =
        "openssl s_client -connect " + place + " </dev/null 2>/dev/null | openssl x509 -noout ";
    EXPECT_EQ(Cli().shell(certificate + "-fingerprint -sha256").out,
              "sha256 Fingerprint=" + shown["sha256"].asString() + "\n");
    EXPECT_EQ(Cli().shell(certificate + "-dates -dateopt iso_8601 | tr ' ' T").out,
              "notBefore=" + shown["validFrom"].asString() + "\nnotAfter=" + shown["validUntil"].asString() +
                  "\n");
    EXPECT_TRUE(Cli().json({"fingerprint", place, "--ca-file", array.caFile()}).json()["verified"].asBool());
    const Outcome text = Cli().run({"fingerprint", place});
    for (const char* part : {"subject", "issuer", "valid until", "SHA-256"}) {
        EXPECT_THAT(text.out, HasSubstr(part));
    }
    EXPECT_THAT(text.out, HasSubstr("--pin " + array.pinnedKey()));
    const std::string sum = shown["sha256"].asString();
    EXPECT_THAT(text.out,
                HasSubstr("SHA-256      " + sum.substr(0, 48) + "\n             " + sum.substr(48) + "\n"));
    EXPECT_EQ(Cli().run({"fingerprint", "127.0.0.2:" + std::to_string(array.port())}).exitCode, 1)
        << "nobody listens there";
    EXPECT_FALSE(shown["selfSigned"].asBool());
    EXPECT_THAT(text.out, Not(HasSubstr("(itself)")));
    EXPECT_THAT(text.out, HasSubstr("names        127.0.0.1, ::1, localhost\n"));
    const auto reasonOf = [&](const std::string& server) {
        const Outcome failed = Cli().run({"fingerprint", server});
        EXPECT_EQ(failed.exitCode, 1);
        return failed.err;
    };
    EXPECT_THAT(reasonOf("127.0.0.1:1"), HasSubstr("Connection refused; check the address and the port"));
    EXPECT_THAT(reasonOf("127.0.0.1:" + std::to_string(array.controlPort())),
                HasSubstr("; check that this is a TLS port"));
}

TEST_F(CliTest, FingerprintTellsWhyACertificateIsNotVerified)
{
    const std::string place = array.ip() + ":" + std::to_string(array.port());
    const Folder folder;
    const auto toldWith = [&](const std::string& caFile) {
        Cli other;
        other.environment["OVRA_REST_CA_FILE"] = caFile;
        return other.run({"fingerprint", place}).out;
    };
    EXPECT_THAT(toldWith(array.caFile()), HasSubstr("verified     yes\n"));
    EXPECT_THAT(toldWith("/nowhere.pem"),
                HasSubstr("verified     no: the CA file /nowhere.pem: No such file or directory\n"));
    const std::string empty = folder.write("empty.pem", "nothing\n");
    EXPECT_THAT(toldWith(empty),
                HasSubstr("verified     no: the CA file " + empty + " holds no certificates\n"));
    EXPECT_THAT(Cli().run({"fingerprint", place}).out, HasSubstr("verified     no: unable to get"));
}

Json::Value shownOf(Certificate certificate)
{
    MisbehavingServer::Options options;
    options.certificate = certificate;
    const MisbehavingServer server(options);
    return Cli()
        .json({"fingerprint", "127.0.0.1:" + std::to_string(server.port()), "--ca-file",
               TestCertificates::instance().caFile()})
        .json();
}

TEST(Fingerprint, IsVerifiedForTheAddressAndTheTimeAlone)
{
    const Json::Value good = shownOf(Certificate::Good);
    EXPECT_TRUE(good["verified"].asBool()) << good;
    EXPECT_TRUE(good["inForce"].asBool());
    const Json::Value expired = shownOf(Certificate::Expired);
    EXPECT_FALSE(expired["verified"].asBool());
    EXPECT_FALSE(expired["inForce"].asBool());
    const Json::Value other = shownOf(Certificate::WrongHost);
    EXPECT_FALSE(other["verified"].asBool()) << "of another host";
    EXPECT_TRUE(other["inForce"].asBool());
}

TEST_F(CliTest, FingerprintTellsACertificateThatVouchesForItself)
{
    const std::string authority = array.stateDir() + "/ca";
    const tessel_test::ArraySim other({{"--certificate", authority + ".pem", "--key", authority + ".key"}});
    const std::string place = other.ip() + ":" + std::to_string(other.port());
    EXPECT_TRUE(Cli().json({"fingerprint", place}).json()["selfSigned"].asBool());
    EXPECT_THAT(Cli().run({"fingerprint", place}).out,
                HasSubstr("issuer       CN=tessel-arraysim CA  (itself)\n"));
}

TEST(Fingerprint, SaysOfACertificateThatItIsNotInForce)
{
    MisbehavingServer::Options options;
    options.certificate = Certificate::Expired;
    const MisbehavingServer server(options);
    const Outcome told = Cli().run({"fingerprint", "127.0.0.1:" + std::to_string(server.port())});
    EXPECT_THAT(told.out, ::testing::ContainsRegex("valid until  [-0-9TZ:]+  NOT IN FORCE NOW\n"));
}

} // namespace

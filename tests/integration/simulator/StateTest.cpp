// What the array keeps in its state directory: certificates, a password, and for whom.

#include "Certificates.h"
#include "Options.h"
#include "ServerNames.h"
#include "StateDir.h"
#include "X509Files.h"
#include "support/Folder.h"

#include <gtest/gtest.h>
#include <openssl/x509v3.h>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

using namespace arraysim;

namespace {

using Names = std::set<std::string>;

mode_t modeOf(const std::string& file)
{
    struct stat status = {};
    EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
    return status.st_mode & 07777U;
}

class SimulatorState : public ::testing::Test
{
protected:
    std::string pinOf(const Names& names) const
    {
        return pinnedKey(provideCertificates(folder.path(), names).certificate);
    }

    tessel_test::Folder folder;
};

TEST_F(SimulatorState, TheCertificateIsAServersAndNoAuthoritys)
{
    const CertificateFiles files = provideCertificates(folder.path(), {"127.0.0.1", "localhost"});
    const Certificate server = readCertificate(files.certificate);
    const Certificate authority = readCertificate(files.ca);
    EXPECT_EQ(X509_check_ca(server.get()), 0);
    EXPECT_EQ(X509_check_ca(authority.get()), 1);
    EXPECT_EQ(X509_get_extended_key_usage(server.get()), static_cast<uint32_t>(XKU_SSL_SERVER));
    EXPECT_EQ(X509_check_ip_asc(server.get(), "127.0.0.1", 0), 1);
    EXPECT_EQ(X509_check_host(server.get(), "localhost", 0, 0, nullptr), 1);
    const Key key(X509_get_pubkey(authority.get()));
    EXPECT_EQ(X509_verify(server.get(), key.get()), 1);
}

TEST_F(SimulatorState, TheCertificateIsMadeAnewForANameThatItLacksAndKeptOtherwise)
{
    const std::string pin = pinOf({"127.0.0.1", "localhost"});
    EXPECT_EQ(pinOf({"127.0.0.1"}), pin);
    EXPECT_NE(pinOf({"127.0.0.1", "elsewhere"}), pin);
}

TEST_F(SimulatorState, ACertificateThatEndsWithinADayIsMadeAnew)
{
    const Names names = {"localhost"};
    const CertificateFiles files = provideCertificates(folder.path(), names);
    const Certificate ca = readCertificate(files.ca);
    const Key caKey = readKey(folder.path() + "/ca.key");
    const Key key = readKey(files.key);
    const std::string pin = pinnedKey(files.certificate);
    for (const long days : {3L, 0L}) {
        const Certificate served = unsignedCertificate(key, "tessel-arraysim", ca.get(), days);
        extend(served.get(), ca.get(), NID_subject_alt_name, "DNS:localhost");
        ASSERT_GT(X509_sign(served.get(), caKey.get(), EVP_sha256()), 0);
        write(files.certificate, served, files.key, key);
        EXPECT_EQ(pinOf(names) == pin, days == 3) << days;
    }
}

TEST_F(SimulatorState, OfAServerOnEveryAddressTheNamesAreThoseOfThisHost)
{
    EXPECT_EQ(serverNames("192.0.2.7"), (Names{"127.0.0.1", "::1", "localhost", "192.0.2.7"}));
    char host[256] = "";
    ASSERT_EQ(gethostname(host, sizeof host), 0);
    for (const char* const address : {"0.0.0.0", "::"}) {
        const Names names = serverNames(address);
        EXPECT_EQ(names.count(host), 1U) << address;
        EXPECT_EQ(names.count(address), 0U) << "no client can call it so";
    }
}

TEST_F(SimulatorState, TheDirectoryAndThePasswordAreTheOwnersAlone)
{
    const StateDir state(folder.path() + "/state");
    EXPECT_EQ(modeOf(state.path()), 0700U);
    ASSERT_EQ(setenv("TESSEL_ARRAYSIM_PASSWORD", "", 1), 0);
    const std::string made = loginPassword({}, state.file("password"));
    EXPECT_EQ(made.size(), 24U) << "an empty variable is none";
    EXPECT_EQ(modeOf(state.file("password")), 0600U);
    EXPECT_EQ(loginPassword({}, state.file("password")), made) << "it is kept";
    ASSERT_EQ(setenv("TESSEL_ARRAYSIM_PASSWORD", "given", 1), 0);
    EXPECT_EQ(loginPassword({}, state.file("password")), "given");
    ASSERT_EQ(unsetenv("TESSEL_ARRAYSIM_PASSWORD"), 0);
    Options options;
    options.passwordFile = folder.write("of-file", "first line\nsecond\n");
    EXPECT_EQ(loginPassword(options, state.file("password")), "first line");
}

} // namespace

#include "ArrayTest.h"
#include "Codes.h"

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <cstdio>
#include <fstream>
#include <ifaddrs.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

using tessel_test::ArraySim;
using testing::HasSubstr;

namespace {

struct Ended
{
    int status;
    std::string output;
};

Ended run(const std::string& arguments)
{
    const std::string command = std::string(TESSEL_ARRAYSIM) + " " + arguments + " 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    Ended result{0, {}};
    std::array<char, 4096> buffer{};
    while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        result.output.append(buffer.data(), size);
    }
    result.status = WEXITSTATUS(::pclose(pipe));
    return result;
}

std::string documentationText()
{
    std::ifstream file(std::string(TESSEL_DOCS) + "/simulator.md");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/** Whether the array's certificate has a name or an address. */
bool isServed(const ArraySim& array, const std::string& name)
{
    std::FILE* file = std::fopen((array.stateDir() + "/server.pem").c_str(), "r");
    X509* certificate = PEM_read_X509(file, nullptr, nullptr, nullptr);
    std::fclose(file);
    const bool served = X509_check_ip_asc(certificate, name.c_str(), 0) == 1 ||
                        X509_check_host(certificate, name.c_str(), 0, 0, nullptr) == 1;
    X509_free(certificate);
    return served;
}

class SimulatorLifecycle : public ArrayTest
{
};

TEST_F(SimulatorLifecycle, ObjectsAndAssociationsOutliveAStop)
{
    const std::string group = named("/lungroup/", "g");
    array.bulkLuns(20, group);
    const std::string owner = host("h");
    client.create("/iscsi_initiator", R"({"ID":"iqn.x:1","PARENTID":")" + owner + R"("})");
    const Json::Value before = client.get("/lun").json;
    const std::string device = array.deviceId();
    EXPECT_EQ(array.stop(), 0);
    EXPECT_THAT(array.log(), testing::EndsWith(" stopped\n"));
    array.start();
    client.disconnect();
    EXPECT_EQ(array.deviceId(), device);
    EXPECT_EQ(client.get("/lun").code(), code::SESSION_INVALID) << "sessions end with the array";
    ASSERT_EQ(client.login().code(), 0);
    EXPECT_EQ(client.get("/lun").json, before);
    EXPECT_EQ(client.get("/lun/count?ASSOCIATEOBJTYPE=256&ASSOCIATEOBJID=" + group).data()["COUNT"], "20");
    EXPECT_EQ(client.get("/iscsi_initiator/iqn.x:1").data()["PARENTID"].asString(), owner);
    EXPECT_EQ(lun("next"), "21");
}

TEST_F(SimulatorLifecycle, ObjectsOutliveAKill)
{
    lun("a");
    array.kill();
    array.start();
    client.disconnect();
    client.login();
    EXPECT_EQ(client.get("/lun/1").data()["NAME"], "a");
    EXPECT_EQ(client.post("/lun", R"({"NAME":"a","PARENTID":"0","CAPACITY":1})").code(), code::NAME_TAKEN);
}

TEST_F(SimulatorLifecycle, IdleConnectionsDoNotHoldUpTheEnd)
{
    ArrayClient other(array);
    other.login();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(array.stop(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST_F(SimulatorLifecycle, ManyClientsAtOnceAreServed)
{
    std::vector<std::thread> clients;
    std::atomic<int> good{0};
    for (int i = 0; i < 40; ++i) {
        clients.emplace_back([&, i] {
            ArrayClient mine(array);
            bool all = mine.login().code() == 0;
            for (int k = 0; k < 5; ++k) {
                const std::string name = "n" + std::to_string(i) + "." + std::to_string(k);
                all = all && mine.post("/hostgroup", R"({"NAME":")" + name + R"("})").code() == 0;
            }
            good += all ? 1 : 0;
        });
    }
    for (auto& thread : clients) {
        thread.join();
    }
    EXPECT_EQ(good, 40);
    EXPECT_EQ(client.get("/hostgroup/count").data()["COUNT"], "200");
}

TEST_F(SimulatorLifecycle, AStateDirectoryServesOneProcess)
{
    const Ended second = run("--state-dir " + array.stateDir() + " --port 0");
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.output, HasSubstr("in use by another process"));
}

TEST_F(SimulatorLifecycle, APortInUseIsReported)
{
    const ArraySim other;
    other.control("GET", "/");
    const Ended second =
        run("--state-dir " + array.stateDir() + "/own --port " + std::to_string(array.port()));
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.output, HasSubstr("cannot listen on 127.0.0.1 port " + std::to_string(array.port())));
}

TEST_F(SimulatorLifecycle, TheCertificateIsOfItsOwnAuthorityAndKeptAcrossRestarts)
{
    const std::string pin = array.pinnedKey();
    EXPECT_THAT(pin, testing::MatchesRegex("sha256//.{44}"));
    httplib::SSLClient stranger(array.ip(), static_cast<int>(array.port()));
    stranger.enable_server_certificate_verification(true);
    EXPECT_FALSE(stranger.Get("/")) << "without its authority it is not trusted";
    httplib::SSLClient named("localhost", static_cast<int>(array.port()));
    named.set_address_family(AF_INET);
    named.set_ca_cert_path(array.caFile());
    named.enable_server_certificate_verification(true);
    EXPECT_TRUE(named.Get("/"));
    array.stop();
    array.start();
    client.disconnect();
    EXPECT_EQ(array.pinnedKey(), pin);
}

TEST(SimulatorAddress, TheLoopbackOfIpv6IsServedToo)
{
    tessel_test::ArraySimOptions options;
    options.listen = "::1";
    const ArraySim array(options);
    EXPECT_THAT(array.url(), HasSubstr("https://[::1]:"));
    ArrayClient client(array);
    EXPECT_EQ(client.login().code(), 0);
    EXPECT_TRUE(isServed(array, "::1"));
    EXPECT_TRUE(isServed(array, "127.0.0.1"));
    EXPECT_FALSE(isServed(array, "::2"));
}

TEST(SimulatorAddress, OnAllAddressesTheCertificateHasTheNamesOfThisHost)
{
    tessel_test::ArraySimOptions options;
    options.listen = "0.0.0.0";
    const ArraySim array(options);
    char name[256] = "";
    ASSERT_EQ(::gethostname(name, sizeof name), 0);
    EXPECT_TRUE(isServed(array, name));
    EXPECT_TRUE(isServed(array, "localhost"));
    ifaddrs* all = nullptr;
    ASSERT_EQ(::getifaddrs(&all), 0);
    int count = 0;
    for (const ifaddrs* entry = all; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET) {
            char text[INET_ADDRSTRLEN];
            inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr, text,
                      sizeof text);
            EXPECT_TRUE(isServed(array, text)) << text;
            ++count;
        }
    }
    ::freeifaddrs(all);
    EXPECT_GT(count, 0);
    EXPECT_FALSE(isServed(array, "0.0.0.0")) << "no client can call it so";
    EXPECT_FALSE(isServed(array, "192.0.2.1"));
}

TEST_F(SimulatorLifecycle, FilesWithSecretsAreTheOwnersAlone)
{
    for (const std::string name : {"/ca.key", "/server.key", "/array.db"}) {
        struct stat status
        {
        };
        ASSERT_EQ(::stat((array.stateDir() + name).c_str(), &status), 0) << name;
        EXPECT_EQ(status.st_mode & 077, 0U) << name;
    }
}

TEST(SimulatorCommand, HelpNamesEveryOption)
{
    const Ended help = run("--help");
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--state-dir",
                               "--listen",
                               "--port ",
                               "--port-file",
                               "--control-port ",
                               "--control-port-file",
                               "--certificate",
                               "--key",
                               "--user",
                               "--password-file",
                               "--session-limit",
                               "--session-timeout",
                               "--settle ",
                               "--settle-lungroup",
                               "--company-id",
                               "--log",
                               "--stop-on-stdin-eof",
                               "--error-codes",
                               "--version",
                               "TESSEL_ARRAYSIM_PASSWORD"}) {
        EXPECT_THAT(help.output, HasSubstr(option));
    }
}

TEST(SimulatorCommand, EveryOptionOfTheHelpIsInTheDocumentation)
{
    const std::string documentation = documentationText();
    std::istringstream words(run("--help").output);
    std::string word;
    int count = 0;
    while (words >> word) {
        const std::string option =
            word.substr(word.find("--") == std::string::npos ? word.size() : word.find("--"));
        if (option.size() > 3 && option != "--help" && option != "--version" && word.find("-h,") != 0) {
            ++count;
            EXPECT_THAT(documentation, HasSubstr("`" + option.substr(0, option.find_first_of(",;.)"))));
        }
    }
    EXPECT_GT(count, 17);
}

TEST(SimulatorCommand, BadOptionsEndWithAMessage)
{
    EXPECT_NE(run("--nonsense").status, 0);
    EXPECT_THAT(run("--port 70000").output, HasSubstr("70000"));
    EXPECT_THAT(run("--state-dir /proc/none/such").output, HasSubstr("cannot make the state directory"));
    for (const std::string id : {"XYZ", "00140", "0014055", "00140A"}) {
        EXPECT_THAT(run("--company-id " + id).output, HasSubstr("hexadecimal")) << id;
    }
}

TEST(SimulatorCommand, EveryErrorCodeIsInTheDocumentation)
{
    const std::string documentation = documentationText();
    std::istringstream codes(run("--error-codes").output);
    std::string line;
    int count = 0;
    while (std::getline(codes, line)) {
        ++count;
        const std::string number = line.substr(0, line.find(' '));
        const std::string meaning = line.substr(line.find("  ", line.find("  ") + 2) + 2);
        EXPECT_THAT(documentation, HasSubstr("| " + number + " | " + meaning + " |"));
    }
    EXPECT_GT(count, 20);
}

} // namespace

// Why there is no session: for each reason a program of the SDK and the command line say it, and say it
// right.

#include "Cli.h"
#include "support/ArrayClient.h"
#include "support/MisbehavingServer.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <tessel/Failure.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

using ovra::tessel::FailureKind;
using ovra::tessel::FailureReason;
using tessel_test::Behaviour;
using tessel_test::Certificate;
using tessel_test::MisbehavingServer;
using tessel_test::TestCertificates;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

/** What is asked for a session, and how it is trusted. */
struct Place
{
    std::string ip = "127.0.0.1";
    unsigned port = 0;
    std::map<std::string, std::string> environment; ///< what differs from the usual
    std::shared_ptr<MisbehavingServer> server;
    std::shared_ptr<void> alive; ///< goes with the place

    unsigned accepts() const { return server ? server->accepts() : 0; }
};

struct Reason
{
    const char* name;
    std::function<Place(const tessel_test::ArraySim&)> make;
    FailureKind kind;
    FailureReason reason;
    bool canTryAgain;
    std::vector<std::string> words;  ///< all of them are in both
    std::vector<std::string> advice; ///< all of them are what the command line says
    std::vector<std::string> wrong;  ///< advice for other reasons
};

void PrintTo(const Reason& reason, std::ostream* out)
{
    *out << reason.name;
}

Place server(MisbehavingServer::Options options, std::map<std::string, std::string> environment = {})
{
    const auto made = std::make_shared<MisbehavingServer>(options);
    environment.emplace("OVRA_REST_CA_FILE", TestCertificates::instance().caFile());
    return {"127.0.0.1", made->port(), environment, made, nullptr};
}

MisbehavingServer::Options showing(Certificate certificate)
{
    MisbehavingServer::Options options;
    options.certificate = certificate;
    return options;
}

/** Accepts no more: the queue of a listener that nobody reads is full. */
Place fullQueue()
{
    struct Sockets
    {
        ~Sockets()
        {
            for (const int each : all) {
                close(each);
            }
        }
        std::vector<int> all;
    };
    const auto sockets = std::make_shared<Sockets>();
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockets->all.push_back(listener);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(listener, any, size) | listen(listener, 0) | getsockname(listener, any, &size), 0);
    for (int i = 0; i < 8; ++i) {
        sockets->all.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        static_cast<void>(connect(sockets->all.back(), any, size));
    }
    return {"127.0.0.1", ntohs(address.sin_port), {}, nullptr, sockets};
}

const Reason REASONS[] = {
    {"WrongPassword",
     [](const auto& sim) {
         return Place{sim.ip(), sim.port(), {{"TESSEL_PASSWORD", "Wrong-password-1"}}, nullptr, nullptr};
     },
     FailureKind::REFUSED,
     FailureReason::OTHER,
     false,
     {"The user name or password is incorrect"},
     {"refused the login of admin", "error code"},
     {"sessions are in use", "Wrong-password-1"}},
    {"NoFreeSession",
     [](const auto& sim) {
         const auto other = std::make_shared<tessel_test::ArrayClient>(sim);
         EXPECT_EQ(other->login().code(), 0);
         return Place{sim.ip(), sim.port(), {}, nullptr, other};
     },
     FailureKind::REFUSED,
     FailureReason::OTHER,
     false,
     {"All 1 sessions are in use"},
     {"refused the login of admin", "error code"},
     {"check user name", "password and --scope"}},
    {"ExpiredCertificate",
     [](const auto&) { return server(showing(Certificate::Expired)); },
     FailureKind::NOT_TRUSTED,
     FailureReason::CERTIFICATE_EXPIRED,
     false,
     {"certificate has expired"},
     {"is not trusted", "renew it on the array"},
     {"--ca-file", "another name"}},
    {"WrongName",
     [](const auto&) { return server(showing(Certificate::WrongHost)); },
     FailureKind::NOT_TRUSTED,
     FailureReason::CERTIFICATE_NAME,
     false,
     {},
     {"is not trusted", "for another name or address"},
     {"expired", "--ca-file"}},
    {"WrongPin",
     [](const auto&) {
         return server(showing(Certificate::OtherCa),
                       {{"OVRA_REST_CA_FILE", ""},
                        {"OVRA_REST_PINNED_KEY", TestCertificates::instance().pinnedKey(Certificate::Good)}});
     },
     FailureKind::NOT_TRUSTED,
     FailureReason::CERTIFICATE_PIN,
     false,
     {},
     {"is not trusted", "not the pinned one", "tesselctl fingerprint 127.0.0.1"},
     {"--ca-file", "expired"}},
    {"UnknownAuthority",
     [](const auto&) { return server(showing(Certificate::OtherCa)); },
     FailureKind::NOT_TRUSTED,
     FailureReason::CERTIFICATE_AUTHORITY,
     false,
     {},
     {"is not trusted", "no authority", "trust it with --pin or --ca-file"},
     {"expired", "another name"}},
    {"CaFileMissing",
     [](const auto&) {
         return server({}, {{"OVRA_REST_CA_FILE", "/nowhere/ca.pem"}});
     },
     FailureKind::NOT_TRUSTED,
     FailureReason::CA_FILE,
     false,
     {"the CA file /nowhere/ca.pem: No such file or directory"},
     {"--ca-file"},
     {"fingerprint"}},
    {"CaFileWithoutCertificates",
     [](const auto&) {
         return server({}, {{"OVRA_REST_CA_FILE", "/dev/null"}});
     },
     FailureKind::NOT_TRUSTED,
     FailureReason::CA_FILE,
     false,
     {"the CA file /dev/null holds no certificate"},
     {"--ca-file"},
     {"fingerprint"}},
    {"NothingListens",
     [](const auto&) {
         return Place{"127.0.0.1", 1, {}, nullptr, nullptr};
     },
     FailureKind::NOT_REACHABLE,
     FailureReason::NOTHING_LISTENS,
     true,
     {"Connection refused"},
     {"cannot be reached", "nothing listens", "the port"},
     {"trust"}},
    {"PlainHttp",
     [](const auto&) {
         MisbehavingServer::Options options;
         options.plainHttp = true;
         return server(options);
     },
     FailureKind::NOT_REACHABLE,
     FailureReason::NO_TLS,
     false,
     {},
     {"does not speak TLS 1.2 or later", "port of the management interface"},
     {"trust"}},
    {"OldTls",
     [](const auto&) {
         MisbehavingServer::Options options;
         options.maximumTlsVersion = 0x0302; // TLS 1.1
         return server(options);
     },
     FailureKind::NOT_REACHABLE,
     FailureReason::NO_TLS,
     false,
     {},
     {"does not speak TLS 1.2 or later"},
     {"trust"}},
    {"SilenceInTheHandshake",
     [](const auto&) {
         MisbehavingServer::Options options;
         options.silentOnConnect = true;
         return server(options);
     },
     FailureKind::TIMED_OUT,
     FailureReason::SILENCE,
     true,
     {},
     {"does not answer in time", "--timeout"},
     {"trust"}},
    {"SilenceAfterTheRequest",
     [](const auto&) {
         Place place = server({});
         place.server->setDefault(Behaviour::neverAnswer());
         return place;
     },
     FailureKind::TIMED_OUT,
     FailureReason::SILENCE,
     true,
     {},
     {"does not answer in time", "--timeout"},
     {"trust"}},
    {"BlackHole",
     [](const auto&) { return fullQueue(); },
     FailureKind::TIMED_OUT,
     FailureReason::SILENCE,
     true,
     {},
     {"does not answer in time", "--timeout"},
     {"trust"}},
    {"NoArray",
     [](const auto&) {
         Place place = server({});
         place.server->setDefault(Behaviour::answer("<html>Service Unavailable</html>", 503));
         return place;
     },
     FailureKind::UNREADABLE_ANSWER,
     FailureReason::OTHER,
     true,
     {"HTTP status is 503"},
     {"did not answer loginDevice as an array does"},
     {"trust"}},
};

class Reasons : public ::testing::TestWithParam<Reason>
{
protected:
    Reasons() : array({{"--session-limit", "1"}})
    {
        cli.pointAt(array);
        cli.environment["OVRA_REST_CONNECT_TIMEOUT_S"] = "1";
        cli.environment["OVRA_REST_TIMEOUT_S"] = "1";
        cli.environment["XDG_STATE_HOME"] = folder.path();
        place = GetParam().make(array);
        for (const auto& [name, value] : place.environment) {
            cli.environment[name] = value;
        }
        cli.environment["TESSEL_ARRAY"] = place.ip + ":" + std::to_string(place.port);
    }

    tessel_test::ArraySim array;
    Folder folder;
    Cli cli;
    Place place;
};

} // namespace

TEST_P(Reasons, AreToldToAProgram)
{
    const Reason& reason = GetParam();
    const Outcome outcome =
        cli.shell(std::string(WHY_NO_LOGIN) + " " + place.ip + " " + std::to_string(place.port) + " admin");
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_THAT(outcome.out, StartsWith(std::to_string(static_cast<int>(reason.kind)) + " " +
                                        std::to_string(static_cast<int>(reason.reason)) + " "));
    for (const std::string& word : reason.words) {
        EXPECT_THAT(outcome.out, HasSubstr(word));
    }
    EXPECT_EQ(outcome.out.find("; or try again") != std::string::npos, reason.canTryAgain) << outcome.out;
    EXPECT_THAT(outcome.out, Not(HasSubstr(": ;"))) << "there are words";
}

TEST_P(Reasons, AreToldByTheCommandLineInOneLine)
{
    const Reason& reason = GetParam();
    const Outcome outcome = cli.run({"ping"});
    EXPECT_EQ(outcome.exitCode, 1) << outcome;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    for (const auto* all : {&reason.words, &reason.advice}) {
        for (const std::string& word : *all) {
            EXPECT_THAT(outcome.err, HasSubstr(word));
        }
    }
    for (const std::string& word : reason.wrong) {
        EXPECT_THAT(outcome.err, Not(HasSubstr(word)));
    }
    EXPECT_LE(place.accepts(), 1U) << "nothing is connected to a second time";
}

TEST(FingerprintOfNobody, IsGivenUpInTime)
{
    const Place place = fullQueue();
    const Outcome outcome =
        Cli().run({"fingerprint", "127.0.0.1:" + std::to_string(place.port), "--connect-timeout", "1"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, HasSubstr("Connection timed out; check the address and the port"));
}

INSTANTIATE_TEST_SUITE_P(Login, Reasons, ::testing::ValuesIn(REASONS),
                         [](const auto& one) { return std::string(one.param.name); });

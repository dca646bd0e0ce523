// Signals that come while a command has a session.

#include "Cli.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/stat.h>
#include <thread>

namespace {

/** A command that has its session and waits for a secret, which comes from a pipe. */
class Waiting : public CliTest
{
protected:
    Waiting()
    {
        make({"initiator", "iscsi", "create", "iqn.2024-05.org.example:a"});
        EXPECT_EQ(mkfifo(secret.c_str(), 0600), 0);
        array.addFault(R"({"method":"DELETE","path":"/sessions","action":"delay","delayMs":1500})");
    }

    /** Runs it; a signal comes while it waits, and the secret then. */
    Outcome interrupted(int signal, const std::string& before, const std::function<void()>& beforeTheSecret)
    {
        Outcome outcome;
        std::thread running([&] {
            outcome = cli.shell(before + "echo $$ >" + folder.path() +
                                "/pid; exec " TESSELCTL
                                " initiator iscsi modify iqn.2024-05.org.example:a --chap oneway"
                                " --chap-name n --chap-secret-file " +
                                secret);
        });
        std::ofstream pipe(secret); // opens once it is read
        pid_t pid = -1;
        std::ifstream(folder.path() + "/pid") >> pid;
        EXPECT_EQ(kill(pid, signal), 0);
        beforeTheSecret();
        pipe << "secret-of-chap" << std::endl;
        pipe.close();
        running.join();
        return outcome;
    }

    const Folder folder;
    const std::string secret = folder.path() + "/secret";
};

TEST_F(Waiting, ASignalEndsTheSessionFirstAndWhatFailsForThatIsNotTold)
{
    const Outcome outcome = interrupted(SIGTERM, "", [&] {
        while (array.faults()[0]["hits"].asUInt() == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_EQ(outcome.exitCode, 128 + SIGTERM) << outcome;
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(array.counters()["sessions"].asInt(), 0);
}

TEST_F(Waiting, NothingIsPrintedAnyMoreOnceASignalHasCome)
{
    array.clearFaults();
    array.addFault(
        R"({"method":"DELETE","path":"/sessions","action":"delay","delayMs":1500,"performed":false})");
    const Outcome outcome = interrupted(SIGTERM, "", [&] {
        while (array.faults()[0]["hits"].asUInt() == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    EXPECT_EQ(outcome.exitCode, 128 + SIGTERM) << outcome;
    EXPECT_EQ(outcome.out + outcome.err, "") << "though the session was in force still";
}

TEST_F(Waiting, ASignalThatTheCallerIgnoresIsIgnored)
{
    array.clearFaults();
    const Outcome outcome = interrupted(SIGHUP, "trap '' HUP; ", [] {});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(array.record("iscsi_initiator", "iqn.2024-05.org.example:a")["USECHAP"], "true");
}

} // namespace

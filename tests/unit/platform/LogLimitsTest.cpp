// Logs that fit a disk: limits of a day and of all, the clock, and the log that is switched off.

#include "LogFixture.h"

#include <LogRoom.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace ovra::log {
namespace {

constexpr std::uintmax_t MIB = 1024UL * 1024;

class LogLimits : public LogFixture
{
protected:
    void limit(const std::string& entries) { writeFile(iniFile(), "[files]\n" + entries); }

    void run(const std::string& text) { service.run(INFO, "p", text); }

    std::uintmax_t bytes(const std::string& part = "Tessel_") const
    {
        std::uintmax_t sum = 0;
        std::error_code gone;
        for (const auto& entry : std::filesystem::directory_iterator(logs(), gone)) {
            const bool isWanted = entry.path().filename().string().find(part) != std::string::npos;
            const std::uintmax_t size = isWanted ? entry.file_size(gone) : 0;
            sum += gone ? 0 : size;
        }
        return sum;
    }

    /** What the sum rests upon: two processes never find the same room. */
    void expectNoFileOverfull() const
    {
        for (const std::string& name : namesIn(logs())) {
            EXPECT_LE(std::filesystem::file_size(logs() / name), MIB / 16) << name;
        }
    }

    void fill(std::uintmax_t wanted)
    {
        const std::string text(1000, 'x');
        for (std::uintmax_t written = 0; written < wanted; written += 1050) {
            run(text);
        }
    }
};

TEST_F(LogLimits, NeverTakeMoreThanAllMay)
{
    limit("max_mib = 1\n");
    ASSERT_EQ(0, start());
    std::uintmax_t most = 0;
    for (int i = 0; i < 30; ++i) {
        fill(MIB / 10);
        service.interfaceCall(INFO, {});
        service.audit("{}");
        most = std::max(most, bytes());
    }
    run("the last line");
    EXPECT_LE(most, MIB);
    EXPECT_GT(most, MIB / 2) << "no more goes than must";
    EXPECT_EQ(0U, service.dropped());
    const unsigned last = lastPart(logs().string(), "Tessel_run_", Date::of(now));
    EXPECT_GT(last, 10U);
    const auto newest = linesOf(logs() / datedName("Tessel_run_", Date::of(now), last));
    EXPECT_EQ("INFO p the last line", withoutOrigin(newest.back()));
    EXPECT_FALSE(std::filesystem::exists(runLog())) << "the oldest part goes first";
}

TEST_F(LogLimits, DoNotKeepFromTheUsersDirectoryWhereTheirOwnCannotBeUsed)
{
    limit("max_mib = 1\n");
    writeFile(logs(), "no directory");
    ASSERT_EQ(0, start());
    run("text");
    EXPECT_EQ(2U, linesOf(state() / "Tessel_run_2026-11-21.log").size());
}

TEST_F(LogLimits, OfADayLeaveTheOtherDaysAlone)
{
    limit("max_mib_per_day = 1\nmax_mib = 0\n");
    ASSERT_EQ(0, start());
    fill(3 * MIB);
    EXPECT_LE(bytes("2026-11-21"), MIB);
    setTime("2026-11-22 09:00:00");
    const std::uintmax_t before = bytes("2026-11-21");
    fill(3 * MIB);
    EXPECT_LE(bytes("2026-11-22"), MIB);
    EXPECT_EQ(before, bytes("2026-11-21"));
}

TEST_F(LogLimits, OfAllTakeTheOldestDayFirst)
{
    writeFile(runLog("2026-11-19"), std::string(MIB / 2, '\n'));
    writeFile(interfaceLog("2026-11-18"), std::string(MIB / 2, '\n'));
    limit("max_mib = 1\n");
    ASSERT_EQ(0, start());
    EXPECT_FALSE(std::filesystem::exists(interfaceLog("2026-11-18")));
    EXPECT_TRUE(std::filesystem::exists(runLog("2026-11-19")));
    fill(MIB);
    EXPECT_FALSE(std::filesystem::exists(runLog("2026-11-19")));
}

TEST_F(LogLimits, LeaveTodaysFileAlsoWhereADayToComeHasMoreParts)
{
    writeFile(logs() / "Tessel_run_2026-11-22_1000.log", std::string(MIB / 16 * 15, '\n'));
    limit("max_mib = 1\n");
    ASSERT_EQ(0, start());
    run("kept");
    service.stop("product");
    writeFile(logs() / "Tessel_run_2026-11-22_1001.log", std::string(MIB / 16 * 15, '\n'));
    ASSERT_EQ(0, start());
    service.interfaceCall(INFO, {}); // a file that is begun needs room
    run("again");
    EXPECT_EQ("INFO p kept", withoutOrigin(linesOf(runLog()).front()));
}

TEST_F(LogLimits, AreKeptByAFileThatHasGrownBeforeThereWereAny)
{
    writeFile(runLog(), std::string(3 * MIB, '\n'));
    limit("max_mib = 2\n");
    ASSERT_EQ(0, start());
    run("text");
    EXPECT_LE(bytes(), 2 * MIB);
    EXPECT_EQ(0U, service.dropped());
}

TEST_F(LogLimits, AreKeptByEightProcessesThatTearNoLine)
{
    limit("max_mib = 1\n");
    const std::vector<pid_t> children = startWriters(8, 3000);
    std::atomic<bool> isOver{false};
    std::uintmax_t most = 0;
    std::thread watch([&] {
        while (!isOver) {
            most = std::max(most, bytes());
        }
    });
    expectEnded(children);
    isOver = true;
    watch.join();
    EXPECT_LE(most, MIB);
    EXPECT_GT(most, MIB / 2);
    expectNoFileOverfull();
    for (const std::string& name : namesIn(logs())) {
        EXPECT_TRUE(readFile(logs() / name).empty() || readFile(logs() / name).back() == '\n');
        for (const std::string& line : linesOf(logs() / name)) {
            numbersOf(line);
        }
    }
}

TEST_F(LogLimits, AreKeptByAChildThatHasItsParentsFile)
{
    limit("max_mib = 1\n");
    ASSERT_EQ(0, start());
    run("parent");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    fill(2 * MIB);
    if (child == 0) {
        _exit(service.dropped() == 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    EXPECT_LE(bytes(), MIB);
    expectNoFileOverfull();
}

TEST_F(LogLimits, LeaveNothingOfALineThatHasNoPlace)
{
    limit("max_mib = 1\n");
    ASSERT_EQ(0, start());
    run(std::string(MIB, 'x'));
    EXPECT_EQ(1U, service.dropped());
    run("after");
    EXPECT_LE(bytes(), 1024U);
}

TEST_F(LogLimits, AClockThatJumpsAheadRemovesNothingThatWasWrittenTheDayBefore)
{
    ASSERT_EQ(0, start());
    if (getxattr(logs().c_str(), "user.ovra.uptime", nullptr, 0) < 0 && errno == ENOTSUP) {
        GTEST_SKIP() << "the file system of " << logs() << " keeps no notes";
    }
    run("the day before");
    for (const char* const day : {"2027-03-01", "2027-03-02", "2029-01-01"}) {
        setTime((std::string(day) + " 10:00:00").c_str());
        run("the clock is wrong");
        EXPECT_TRUE(std::filesystem::exists(runLog())) << day;
        EXPECT_TRUE(std::filesystem::exists(runLog(day)));
    }
}

TEST_F(LogLimits, AClockThatIsBelievedLetsFilesOfAnEarlierBootGo)
{
    writeFile(runLog("2026-09-01"), "old");
    setxattr(runLog("2026-09-01").c_str(), "user.ovra.uptime", "another-boot 5", 14, 0);
    ASSERT_EQ(0, start());
    EXPECT_FALSE(std::filesystem::exists(runLog("2026-09-01")));
}

TEST_F(LogLimits, APartOfADayIsOldWithItsDay)
{
    writeFile(logs() / "Tessel_run_2026-01-01_12.log", "old");
    writeFile(logs() / "Tessel_run_2026-01-01_1.log", "none of ours");
    writeFile(logs() / "Tessel_run_2026-01-01_02.log", "none of ours");
    ASSERT_EQ(0, start());
    EXPECT_FALSE(std::filesystem::exists(logs() / "Tessel_run_2026-01-01_12.log"));
    EXPECT_TRUE(std::filesystem::exists(logs() / "Tessel_run_2026-01-01_1.log"));
    EXPECT_TRUE(std::filesystem::exists(logs() / "Tessel_run_2026-01-01_02.log"));
}

TEST_F(LogLimits, TheInterfaceLogIsNotWrittenWhereItIsSwitchedOff)
{
    writeFile(iniFile(), "[interface_log]\nenabled = no\n");
    ASSERT_EQ(0, start());
    service.interfaceCall(INFO, {});
    run("text");
    EXPECT_EQ(std::vector<std::string>{"Tessel_run_2026-11-21.log"}, namesIn(logs()));
    EXPECT_EQ(0U, service.dropped());
}

TEST_F(LogLimits, AnAuditLineStandsAsItIsAndIsWhole)
{
    EXPECT_EQ(-1, service.audit("{}")) << "nothing is started";
    ASSERT_EQ(0, start());
    EXPECT_EQ(0, service.audit(R"({"what":"a \"quoted\" \\ text"})"));
    EXPECT_EQ(-1, service.audit("two\nlines"));
    EXPECT_EQ(std::vector<std::string>{R"({"what":"a \"quoted\" \\ text"})"},
              linesOf(logs() / "Tessel_audit_2026-11-21.log"));
}

} // namespace
} // namespace ovra::log

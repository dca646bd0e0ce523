#include "LogFixture.h"

#include <csignal>
#include <dirent.h>
#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

thread_local bool listingsFail = false;

template <class Function>
Function* real(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// In the place of the C library's, so that no directory can be listed where a test wants it so.
extern "C" DIR* opendir(const char* path)
{
    return listingsFail ? nullptr : real<DIR*(const char*)>("opendir")(path);
}
extern "C" DIR* fdopendir(int descriptor)
{
    return listingsFail ? nullptr : real<DIR*(int)>("fdopendir")(descriptor);
}

namespace ovra::log {
namespace {

class LogFiles : public LogFixture
{
protected:
    void run(const std::string& text) { service.run(INFO, "p", text); }

    /** Takes the place of a directory, which then cannot be made: for root, too. */
    static void block(const std::filesystem::path& path) { writeFile(path, ""); }
};

mode_t modeOf(const std::filesystem::path& path)
{
    struct stat status
    {
    };
    EXPECT_EQ(0, stat(path.c_str(), &status));
    return status.st_mode & 07777;
}

TEST_F(LogFiles, AreForTheirOwnerAndGroupOnly)
{
    const mode_t before = umask(0);
    ASSERT_EQ(0, start());
    run("text");
    service.interfaceCall(INFO, {});
    umask(before);
    EXPECT_EQ(0640U, modeOf(runLog()));
    EXPECT_EQ(0640U, modeOf(interfaceLog()));
    EXPECT_EQ(0750U, modeOf(logs()));
}

TEST_F(LogFiles, ANewOneBeginsWithEachDay)
{
    setTime("2026-11-21 23:59:59", 999);
    ASSERT_EQ(0, start());
    run("old day");
    service.interfaceCall(INFO, {});
    setTime("2026-11-22 00:00:00");
    run("new day");
    service.interfaceCall(INFO, {});
    EXPECT_EQ((std::vector<std::string>{"Tessel_interface_2026-11-21.log", "Tessel_interface_2026-11-22.log",
                                        "Tessel_run_2026-11-21.log", "Tessel_run_2026-11-22.log"}),
              namesIn(logs()));
    EXPECT_EQ(1U, linesOf(runLog("2026-11-21")).size());
    EXPECT_EQ("INFO p new day", withoutOrigin(linesOf(runLog("2026-11-22")).at(0)));
}

TEST_F(LogFiles, ThatAreThereAreContinued)
{
    writeFile(runLog(), "earlier\n");
    ASSERT_EQ(0, start());
    run("later");
    EXPECT_EQ(2U, linesOf(runLog()).size());
}

TEST_F(LogFiles, OldOnesOfTheirOwnNameAreRemoved)
{
    writeFile(iniFile(), "[files]\nretention_days = 5\n");
    const std::vector<std::string> kept = {"Tessel_interface_2026-11-16.log", "Tessel_run_2026-11-16.log",
                                           "Tessel_run_2027-01-01.log",       "Tessel_run_2020-01-01.log.gz",
                                           "Tessel_run_2020-02-30.log",       "Tessel_run_2020-01-01.LOG",
                                           "my_Tessel_run_2020-01-01.log",    "notes.txt"};
    const std::vector<std::string> removed = {"Tessel_interface_2026-11-15.log", "Tessel_run_2026-11-15.log",
                                              "Tessel_run_2020-01-01.log", "Tessel_run_1999-12-31.log"};
    for (const auto& names : {kept, removed}) {
        for (const std::string& name : names) {
            writeFile(logs() / name, "x");
        }
    }
    std::filesystem::create_directory(logs() / "Tessel_run_2020-01-02.log");
    ASSERT_EQ(0, start());
    run("text");
    service.interfaceCall(INFO, {});
    for (const std::string& name : kept) {
        EXPECT_TRUE(std::filesystem::exists(logs() / name)) << name;
    }
    for (const std::string& name : removed) {
        EXPECT_FALSE(std::filesystem::exists(logs() / name)) << name;
    }
    EXPECT_TRUE(std::filesystem::exists(logs() / "Tessel_run_2020-01-02.log"));
}

TEST_F(LogFiles, ARetentionOf0KeepsAll)
{
    writeFile(iniFile(), "[files]\nretention_days = 0\n");
    writeFile(runLog("1999-12-31"), "x");
    ASSERT_EQ(0, start());
    EXPECT_TRUE(std::filesystem::exists(runLog("1999-12-31")));
}

TEST_F(LogFiles, ARetentionOf1KeepsTodayAndYesterday)
{
    writeFile(iniFile(), "[files]\nretention_days = 1\n");
    writeFile(runLog("2026-11-19"), "x");
    writeFile(runLog("2026-11-20"), "x");
    ASSERT_EQ(0, start());
    EXPECT_FALSE(std::filesystem::exists(runLog("2026-11-19")));
    EXPECT_TRUE(std::filesystem::exists(runLog("2026-11-20")));
}

TEST_F(LogFiles, OldOnesAreRemovedAtTheChangeOfTheDayToo)
{
    writeFile(runLog("2026-10-22"), "30 days before");
    ASSERT_EQ(0, start());
    EXPECT_TRUE(std::filesystem::exists(runLog("2026-10-22")));
    setTime("2026-11-22 00:00:00");
    run("text");
    EXPECT_FALSE(std::filesystem::exists(runLog("2026-10-22")));
}

TEST_F(LogFiles, GoToTheUsersDirectoryWhenTheirOwnCannotBeUsed)
{
    block(logs());
    ASSERT_EQ(0, start());
    run("text");
    const std::vector<std::string> lines = linesOf(state() / "Tessel_run_2026-11-21.log");
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("WARN Ovra-Log-API log directory \"" + logs().string() +
                  "\" cannot be used (Not a directory): logs are written here, in \"" + state().string() +
                  "\"",
              withoutOrigin(lines[0]));
    EXPECT_EQ(0U, service.dropped());
}

TEST_F(LogFiles, AreDroppedAndCountedWhenNoDirectoryCanBeUsed)
{
    block(logs());
    block(state());
    EXPECT_EQ(-1, start());
    run("one");
    service.interfaceCall(INFO, {});
    EXPECT_EQ(2U, service.dropped());
    std::filesystem::remove(logs());
    run("two");
    EXPECT_EQ(2U, service.dropped());
    const std::vector<std::string> lines = linesOf(runLog());
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("INFO p two", withoutOrigin(lines[0]));
    EXPECT_EQ("WARN Ovra-Log-API 2 lines could not be written (Not a directory)", withoutOrigin(lines[1]));
    EXPECT_EQ(0, service.stop("product"));
}

TEST_F(LogFiles, AreMadeAgainWhenTheyWereRemoved)
{
    ASSERT_EQ(0, start());
    run("lost");
    std::filesystem::remove_all(logs());
    now += std::chrono::milliseconds(20);
    run("kept");
    ASSERT_EQ(1U, linesOf(runLog()).size());
    EXPECT_EQ("INFO p kept", withoutOrigin(linesOf(runLog())[0]));
    EXPECT_EQ(0U, service.dropped());
}

TEST_F(LogFiles, AreLookedForOnceInTwentyMillisecondsAndAtOnceForTheAudit)
{
    ASSERT_EQ(0, start());
    run("lost");
    service.audit("{}");
    std::filesystem::remove_all(logs());
    now += std::chrono::milliseconds(19);
    run("lost too");
    EXPECT_FALSE(std::filesystem::exists(runLog()));
    EXPECT_EQ(0, service.audit("{}"));
    EXPECT_EQ(1U, linesOf(logs() / "Tessel_audit_2026-11-21.log").size());
    now -= std::chrono::seconds(1); // a clock that is set back
    run("kept");
    EXPECT_EQ(1U, linesOf(runLog()).size());
}

TEST_F(LogFiles, ALinkInTheirPlaceIsNotFollowed)
{
    writeFile(folder / "victim", "precious");
    std::filesystem::create_directory(logs());
    std::filesystem::create_symlink(folder / "victim", runLog());
    ASSERT_EQ(0, start());
    run("text");
    EXPECT_EQ("precious", readFile(folder / "victim"));
    EXPECT_TRUE(std::filesystem::exists(state() / "Tessel_run_2026-11-21.log"));
}

TEST_F(LogFiles, APipeInTheirPlaceIsNotWaitedFor)
{
    std::filesystem::create_directory(logs());
    ASSERT_EQ(0, mkfifo(runLog().c_str(), 0600));
    ASSERT_EQ(0, start());
    run("text");
    EXPECT_TRUE(std::filesystem::exists(state() / "Tessel_run_2026-11-21.log"));
}

TEST_F(LogFiles, WithoutRoomLinesAreCountedAndTheProcessGoesOn)
{
    ASSERT_EQ(0, start());
    run("fits");
    const auto size = std::filesystem::file_size(runLog());
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit narrow = before;
    narrow.rlim_cur = size + 10;
    setrlimit(RLIMIT_FSIZE, &narrow); // at the limit the kernel sends SIGXFSZ, whose default ends the process
    run("cut short");
    run("refused");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(2U, service.dropped());
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(0, sigismember(&pending, SIGXFSZ));

    run("fits again");
    const std::vector<std::string> lines = linesOf(runLog());
    ASSERT_EQ(4U, lines.size()); // the one that was cut short, 10 bytes of it, stands alone
    EXPECT_EQ(10U, lines[1].size());
    EXPECT_EQ("INFO p fits again", withoutOrigin(lines[2]));
    EXPECT_EQ(0U, withoutOrigin(lines[3]).find("WARN Ovra-Log-API 2 lines could not be written ("));
    run("and again");
    EXPECT_EQ(5U, linesOf(runLog()).size()) << "told once";
}

TEST_F(LogFiles, AnAuditLineWithoutRoomIsCountedToo)
{
    ASSERT_EQ(0, start());
    const std::string line(4000, 'x'); // longer than what tells of it
    ASSERT_EQ(0, service.audit(line));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit narrow = before;
    narrow.rlim_cur = 4100;
    setrlimit(RLIMIT_FSIZE, &narrow);
    EXPECT_EQ(-1, service.audit(line));
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(1U, service.dropped());
    const std::vector<std::string> lines = linesOf(runLog());
    ASSERT_EQ(1U, lines.size());
    EXPECT_EQ(0U, withoutOrigin(lines[0]).find("WARN Ovra-Log-API 1 lines could not be written ("));
}

TEST_F(LogFiles, ALineThatWasCutShortLeavesNothingInTheNextDaysFile)
{
    ASSERT_EQ(0, start());
    run("fits");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit narrow = before;
    narrow.rlim_cur = std::filesystem::file_size(runLog()) + 10;
    setrlimit(RLIMIT_FSIZE, &narrow);
    run("cut short");
    setrlimit(RLIMIT_FSIZE, &before);
    setTime("2026-11-22 00:00:00");
    run("of the next day");
    EXPECT_EQ("INFO p of the next day", withoutOrigin(linesOf(runLog("2026-11-22")).at(0)));
}

TEST_F(LogFiles, SeveralProcessesShareThemWithoutTornOrLostLines)
{
    constexpr int PROCESSES = 4;
    constexpr int LINES = 500;
    expectEnded(startWriters(PROCESSES, LINES));
    std::vector<int> next(PROCESSES, 0);
    for (const std::string& line : linesOf(runLog())) {
        const auto [process, number] = numbersOf(line);
        ASSERT_TRUE(process >= 0 && process < PROCESSES);
        EXPECT_EQ(next[static_cast<size_t>(process)]++, number);
    }
    for (const int count : next) {
        EXPECT_EQ(LINES, count);
    }
}

TEST_F(LogFiles, AreNotInheritedByCommands)
{
    ASSERT_EQ(0, start());
    run("text");
    const std::string command = "ls -l /proc/self/fd | grep -q " + folder.string();
    EXPECT_NE(0, system(command.c_str()));
}

TEST_F(LogFiles, ADirectoryThatCannotBeListedCostsNoDescriptor)
{
    ASSERT_EQ(0, start());
    const auto lowestFree = [] {
        const int descriptor = dup(STDIN_FILENO);
        close(descriptor);
        return descriptor;
    };
    const int before = lowestFree();
    listingsFail = true;
    EXPECT_EQ(0U, removeOldFiles(logs().string(), "Tessel_run_", Date::of(now), 30));
    listingsFail = false;
    EXPECT_EQ(before, lowestFree());
}

} // namespace
} // namespace ovra::log

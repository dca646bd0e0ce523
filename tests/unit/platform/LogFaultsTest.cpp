// What the logs do where the system refuses: reading, writing, locking, removing, and telling who the user
// is.

#include "LogFixture.h"

#include <Configuration.h>
#include <Directories.h>
#include <LogRoom.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/** What fails, with which errno; 0 for what works. */
struct Faults
{
    int ofStatus = 0;
    int ofSecondRead = 0;
    int ofNextWrite = 0;
    int ofLock = 0;
    int ofUnlink = 0;
    const char* home = nullptr; ///< of the account; "" for a user without one
    int reads = 0;
};

thread_local Faults faults;

template <class Function>
Function* ofLibrary(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int fail(int error)
{
    errno = error;
    return -1;
}

} // namespace

// In the place of the C library's.
extern "C" int fstat(int descriptor, struct stat* status) noexcept
{
    static auto* const own = ofLibrary<int(int, struct stat*)>("fstat");
    return faults.ofStatus != 0 ? fail(faults.ofStatus) : own(descriptor, status);
}
extern "C" ssize_t read(int descriptor, void* bytes, size_t most)
{
    static auto* const own = ofLibrary<ssize_t(int, void*, size_t)>("read");
    return faults.ofSecondRead != 0 && ++faults.reads == 2 ? fail(faults.ofSecondRead)
                                                           : own(descriptor, bytes, most);
}
extern "C" ssize_t write(int descriptor, const void* bytes, size_t count)
{
    static auto* const own = ofLibrary<ssize_t(int, const void*, size_t)>("write");
    const int error = std::exchange(faults.ofNextWrite, 0);
    return error != 0 ? fail(error) : own(descriptor, bytes, count);
}
extern "C" int flock(int descriptor, int operation) noexcept
{
    static auto* const own = ofLibrary<int(int, int)>("flock");
    return faults.ofLock != 0 ? fail(faults.ofLock) : own(descriptor, operation);
}
extern "C" int nanosleep(const timespec* time, timespec* rest)
{
    static auto* const own = ofLibrary<int(const timespec*, timespec*)>("nanosleep");
    return faults.ofLock != 0 ? 0 : own(time, rest); // thousands of tries for a lock
}
extern "C" int unlink(const char* path) noexcept
{
    static auto* const own = ofLibrary<int(const char*)>("unlink");
    return faults.ofUnlink != 0 ? fail(faults.ofUnlink) : own(path);
}
extern "C" int getpwuid_r(uid_t user, passwd* account, char* buffer, size_t size, passwd** found)
{
    static auto* const own = ofLibrary<int(uid_t, passwd*, char*, size_t, passwd**)>("getpwuid_r");
    if (faults.home == nullptr) {
        return own(user, account, buffer, size, found);
    }
    account->pw_dir = strncpy(buffer, faults.home, size);
    *found = *faults.home != '\0' ? account : nullptr;
    return 0;
}

namespace ovra::log {
namespace {

class LogFaults : public LogFixture
{
protected:
    ~LogFaults() override { faults = {}; }

    void run(const std::string& text) { service.run(INFO, "p", text); }

    void limit() { writeFile(iniFile(), "[files]\nmax_mib = 1\n"); }

    Configuration readHalf() const
    {
        writeFile(iniFile(), "[run_log]\nlevel = error\n" + std::string(5000, '\n'));
        return readConfiguration(iniFile().string());
    }
};

TEST_F(LogFaults, AConfigurationOfWhichHalfIsReadIsNotUsed)
{
    EXPECT_EQ(3, levelNumber(readHalf().level));
    faults.ofSecondRead = EIO;
    const Configuration read = readHalf();
    EXPECT_EQ(1, levelNumber(read.level));
    EXPECT_EQ(std::vector<std::string>{"cannot be read (Input/output error): the defaults are used"},
              read.problems);
}

TEST_F(LogFaults, AConfigurationThatMayBeAPipeIsNotUsed)
{
    faults.ofStatus = EIO;
    EXPECT_EQ(std::vector<std::string>{"cannot be read (Input/output error): the defaults are used"},
              readHalf().problems);
}

TEST_F(LogFaults, AConfigurationThatIsNotThereIsNoProblem)
{
    writeFile(iniFile(), "");
    for (const std::string& path :
         {std::string(), (folder / "none").string(), iniFile().string() + "/below"}) {
        EXPECT_TRUE(readConfiguration(path).problems.empty()) << path;
    }
}

TEST(LogConfiguration, TakesYesAndNoAndNothingElse)
{
    EXPECT_TRUE(parseConfiguration("[interface_log]\nenabled = yes\n").hasInterfaceLog);
    EXPECT_FALSE(parseConfiguration("[interface_log]\nenabled = no\n").hasInterfaceLog);
    const Configuration read = parseConfiguration("[interface_log]\nenabled = maybe\n");
    EXPECT_TRUE(read.hasInterfaceLog);
    EXPECT_EQ(std::vector<std::string>{"enabled must be yes or no, not \"maybe\": yes is used"},
              read.problems);
}

TEST(LogConfiguration, KeepsTheDefaultForANumberThatIsNoneOrTooLarge)
{
    for (const char* entry : {"retention_days", "max_mib_per_day", "max_mib"}) {
        for (const char* number : {"", "many", "-1", "1 day", "1048577", "99999999999999999999"}) {
            const Configuration read =
                parseConfiguration(std::string("[files]\n") + entry + " = " + number + "\n");
            EXPECT_EQ(30, read.retentionDays) << entry << number;
            EXPECT_EQ(0U, read.mostMibPerDay) << entry << number;
            EXPECT_EQ(0U, read.mostMib) << entry << number;
            EXPECT_EQ(1U, read.problems.size()) << entry << number;
        }
    }
    EXPECT_EQ(1048576U, parseConfiguration("[files]\nmax_mib = 1048576\n").mostMib);
    EXPECT_EQ(36500, parseConfiguration("[files]\nretention_days = 36500\n").retentionDays);
    EXPECT_EQ(30, parseConfiguration("[files]\nretention_days = 36501\n").retentionDays);
}

TEST(LogConfiguration, HasNoNumberForALevelThatCannotBeSet)
{
    EXPECT_EQ(-1, levelNumber(spdlog::level::off));
}

TEST(LogConfiguration, NeedsADirectory)
{
    const Configuration read = parseConfiguration("[files]\ndirectory =\n");
    EXPECT_EQ("", read.directory);
    EXPECT_EQ(1U, read.problems.size());
}

TEST(LogLimitsOfAFile, AreAPartOfTheSmallerOne)
{
    constexpr std::uint64_t LIMIT = 1024UL * 1024;
    EXPECT_EQ(LIMIT / 16, (Limits{LIMIT, 0}.ofFile()));
    EXPECT_EQ(LIMIT / 16, (Limits{0, LIMIT}.ofFile()));
    EXPECT_EQ(LIMIT / 16, (Limits{2 * LIMIT, LIMIT}.ofFile()));
}

TEST_F(LogFaults, TheUsersDirectoryIsThatOfTheEnvironmentOrOfTheAccount)
{
    const char* const before = getenv("XDG_STATE_HOME");
    const std::string kept = before != nullptr ? before : "";
    setenv("XDG_STATE_HOME", "/state", 1);
    EXPECT_EQ("/state/ovra/logs", userLogDirectory());
    faults.home = "/home/backup";
    setenv("XDG_STATE_HOME", "state", 1); // would be another one in each working directory
    EXPECT_EQ("/home/backup/.local/state/ovra/logs", userLogDirectory());
    unsetenv("XDG_STATE_HOME");
    EXPECT_EQ("/home/backup/.local/state/ovra/logs", userLogDirectory());
    for (const char* none : {"", "home"}) {
        faults.home = none;
        EXPECT_EQ("", userLogDirectory());
    }
    before != nullptr ? setenv("XDG_STATE_HOME", kept.c_str(), 1) : 0;
}

TEST_F(LogFaults, ADirectoryWithoutANameOrBelowAFileIsNotMade)
{
    EXPECT_EQ(ENOENT, makeDirectories(""));
    writeFile(iniFile(), "");
    EXPECT_EQ(ENOTDIR, makeDirectories(iniFile().string()));
    EXPECT_EQ(ENOTDIR, makeDirectories(iniFile().string() + "/logs"));
}

TEST_F(LogFaults, ALineThatASignalInterruptsIsWrittenOnce)
{
    ASSERT_EQ(0, start());
    faults.ofNextWrite = EINTR;
    run("once");
    EXPECT_EQ(0U, service.dropped());
    ASSERT_EQ(1U, linesOf(runLog()).size());
    EXPECT_EQ("INFO p once", withoutOrigin(linesOf(runLog()).at(0)));
}

TEST_F(LogFaults, AFileThatMayBeAPipeIsNotWrittenTo)
{
    faults.ofStatus = EIO;
    EXPECT_EQ(-1, start());
    run("text");
    EXPECT_EQ(1U, service.dropped());
    faults.ofStatus = 0;
    run("text");
    const std::vector<std::string> lines = linesOf(runLog());
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("INFO p text", withoutOrigin(lines[0]));
    EXPECT_EQ(0U, withoutOrigin(lines[1]).find("WARN Ovra-Log-API 1 line")) << lines[1];
}

TEST_F(LogFaults, AnAuditLineThatIsNotWrittenIsToldAndCounted)
{
    ASSERT_EQ(0, start());
    faults.ofNextWrite = ENOSPC;
    EXPECT_EQ(-1, service.audit("{}"));
    EXPECT_EQ(1U, service.dropped());
    EXPECT_EQ(0, service.audit("{}"));
    EXPECT_EQ(-1, service.audit("{}\n{}"));
    EXPECT_NE(std::string::npos, readFile(runLog()).find(strerror(ENOSPC)));
}

TEST_F(LogFaults, WithoutTheLockNothingIsWrittenHereOrElsewhere)
{
    limit();
    faults.ofLock = EINTR;
    EXPECT_EQ(-1, start());
    faults.ofLock = 0;
    run("first");
    faults.ofLock = EINTR;
    run("dropped");
    EXPECT_EQ(1U, service.dropped());
    faults.ofLock = 0;
    run("second");
    const std::vector<std::string> lines = linesOf(runLog());
    ASSERT_EQ(3U, lines.size());
    EXPECT_EQ("INFO p second", withoutOrigin(lines[1]));
    EXPECT_FALSE(std::filesystem::exists(state()));
}

TEST_F(LogFaults, NoFolderStaysOpenAlsoWhereTheApplicationHasClosedItsInput)
{
    limit();
    const int input = dup(0);
    close(0);
    EXPECT_EQ(0, start());
    run("text");
    struct stat status = {};
    EXPECT_FALSE(fstat(0, &status) == 0 && S_ISDIR(status.st_mode));
    dup2(input, 0);
    close(input);
    EXPECT_EQ(1U, linesOf(runLog()).size());
}

TEST_F(LogFaults, WhereNothingCanBeRemovedTheLimitHoldsAllTheSame)
{
    limit();
    ASSERT_EQ(0, start());
    faults.ofUnlink = EPERM;
    for (int line = 0; line < 1500; ++line) {
        run(std::string(1000, 'x'));
    }
    std::uintmax_t sum = 0;
    for (const std::string& name : namesIn(logs())) {
        sum += std::filesystem::file_size(logs() / name);
    }
    EXPECT_LE(sum, 1024U * 1024);
    const unsigned long dropped = service.dropped();
    EXPECT_LT(400U, dropped);
    EXPECT_FALSE(std::filesystem::exists(state()));
    faults.ofUnlink = 0;
    run("there is room again");
    EXPECT_EQ(dropped, service.dropped());
}

TEST_F(LogFaults, AnOldFileThatCannotBeRemovedIsNotCounted)
{
    writeFile(runLog("2026-01-01"), "old");
    faults.ofUnlink = EPERM;
    EXPECT_EQ(0U, removeOldFiles(logs().string(), "Tessel_run_", Date::of(now), 30));
    faults.ofUnlink = 0;
    EXPECT_EQ(1U, removeOldFiles(logs().string(), "Tessel_run_", Date::of(now), 30));
}

} // namespace
} // namespace ovra::log

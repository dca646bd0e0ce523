#include "LogFixture.h"

#include <ovra/log/LogAPI.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace ovra::log {
namespace {

class LogApi : public LogFixture
{
protected:
    const unsigned long droppedBefore = Log_Dropped_Count(); ///< the count is the process's

    std::vector<std::string> textsOfToday() const
    {
        std::vector<std::string> texts;
        for (const std::string& name : namesIn(logs())) {
            if (name.rfind("Tessel_run_", 0) == 0) {
                for (const std::string& line : linesOf(logs() / name)) {
                    texts.push_back(withoutOrigin(line));
                }
            }
        }
        return texts;
    }
};

TEST_F(LogApi, WritesEachLevelBetweenInitAndFini)
{
    writeFile(iniFile(), "[run_log]\nlevel = debug\n");
    Log_Run_Error("p", "before");
    EXPECT_EQ(-1, LogFini("p"));
    int level = -1;
    ASSERT_EQ(0, LogInit("p", iniFile().c_str(), &level, logs().c_str()));
    EXPECT_EQ(0, level);
    Log_Run_Debug("p", "%s %n is data");
    Log_Run_Info("p", "b");
    Log_Run_Warn("p", "c");
    Log_Run_Error("p", "d");
    EXPECT_EQ(0, LogFini("p"));
    Log_Run_Error("p", "after");
    EXPECT_EQ((std::vector<std::string>{"DEBUG p %s %n is data", "INFO p b", "WARN p c", "ERROR p d"}),
              textsOfToday());
    EXPECT_EQ(droppedBefore, Log_Dropped_Count());
}

TEST_F(LogApi, AcceptsNullForEveryText)
{
    ASSERT_EQ(0, LogInit(nullptr, nullptr, nullptr, logs().c_str()));
    Log_Run_Info(nullptr, nullptr);
    Log_Interface_Info(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr);
    Log_Interface_Error("p", "1", "", "op", "", "", "", "s", "e", "7", nullptr);
    EXPECT_EQ(0, LogFini(nullptr));
    EXPECT_EQ((std::vector<std::string>{"INFO - "}), textsOfToday());
}

TEST_F(LogApi, KeepsErrno)
{
    errno = 4711;
    EXPECT_EQ(0, LogInit("p", "/nonexistent/x.ini", nullptr, logs().c_str()));
    Log_Run_Info("p", "text");
    LogFini("p");
    EXPECT_EQ(4711, errno);
}

TEST_F(LogApi, WithoutAnyDirectoryFailsAndCounts)
{
    writeFile(folder / "blocked", "");
    setenv("XDG_STATE_HOME", (folder / "blocked").c_str(), 1);
    EXPECT_EQ(-1, LogInit("p", "", nullptr, (folder / "blocked/logs").c_str()));
    Log_Run_Info("p", "text");
    EXPECT_EQ(droppedBefore + 1, Log_Dropped_Count());
    EXPECT_EQ(0, LogFini("p"));
}

TEST_F(LogApi, FallsBackToTheStateDirectoryOfTheUser)
{
    writeFile(folder / "blocked", "");
    setenv("XDG_STATE_HOME", (folder / "state").c_str(), 1);
    EXPECT_EQ(0, LogInit("p", "", nullptr, (folder / "blocked/logs").c_str()));
    EXPECT_EQ(folder / "state/ovra/logs", Log_Directory());
    EXPECT_EQ(0, LogFini("p"));
    EXPECT_EQ(folder / "state/ovra/logs", Log_Directory());
    EXPECT_EQ(1U, namesIn(folder / "state/ovra/logs").size());
}

/** Its number; it has ended. */
pid_t childThatLogs()
{
    const pid_t child = fork();
    if (child == 0) {
        Log_Run_Info("p", "child");
        _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    return child;
}

TEST_F(LogApi, AChildForkedWhileOtherThreadsLogCanLogItself)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer's allocator may be locked in a child of a process with threads";
#endif
    ASSERT_EQ(0, LogInit("p", "", nullptr, logs().c_str()));
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        while (!stop) {
            Log_Run_Info("p", "parent");
        }
    });
    constexpr long CHILDREN = 20;
    for (int i = 0; i < CHILDREN; ++i) {
        childThatLogs();
    }
    stop = true;
    writer.join();
    LogFini("p");
    const std::vector<std::string> texts = textsOfToday();
    EXPECT_EQ(CHILDREN, std::count(texts.begin(), texts.end(), "INFO p child"));
}

TEST_F(LogApi, ALineOfAForkedChildNamesTheChild)
{
    ASSERT_EQ(0, LogInit("p", "", nullptr, logs().c_str()));
    Log_Run_Info("p", "parent");
    const pid_t child = childThatLogs();
    LogFini("p");
    std::vector<std::string> processes;
    for (const std::string& name : namesIn(logs())) {
        for (const std::string& line : linesOf(logs() / name)) {
            std::istringstream words(line);
            std::string date;
            std::string time;
            words >> date >> time >> processes.emplace_back();
        }
    }
    EXPECT_EQ((std::vector<std::string>{std::to_string(getpid()), std::to_string(child)}), processes);
}

TEST_F(LogApi, ChildrenThatAreForkedWhileManyThreadsLogTearNothingUnderALimit)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "AddressSanitizer's allocator may be locked in a child of a process with threads";
#endif
    writeFile(iniFile(), "[files]\nmax_mib = 64\n");
    ASSERT_EQ(0, LogInit("p", iniFile().c_str(), nullptr, logs().c_str()));
    constexpr int THREADS = 4;
    constexpr int CHILDREN = 20;
    constexpr int LINES = 20;
    std::atomic<bool> isOver{false};
    std::vector<std::thread> writers;
    for (int process = 0; process < THREADS; ++process) {
        writers.emplace_back([&isOver, process] {
            for (int number = 0; !isOver; ++number) {
                Log_Run_Info("p", numberedLine(process, number % 2000).c_str());
                Log_Audit("{\"parent\":1}");
            }
        });
    }
    std::vector<pid_t> children;
    for (int process = THREADS; process < THREADS + CHILDREN; ++process) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool isWritten = true;
            for (int number = 0; number < LINES; ++number) {
                Log_Run_Info("p", numberedLine(process, number).c_str());
                isWritten = Log_Audit("{\"child\":1}") == 0 && isWritten;
            }
            _exit(isWritten ? 0 : 1);
        }
        children.push_back(child);
    }
    expectEnded(children);
    isOver = true;
    for (std::thread& writer : writers) {
        writer.join();
    }
    LogFini("p");
    std::vector<int> lines(THREADS + CHILDREN, 0);
    long audited = 0;
    for (const std::string& name : namesIn(logs())) {
        const bool isRun = name.find("Tessel_run_") == 0;
        for (const std::string& line : linesOf(logs() / name)) {
            audited += line == "{\"child\":1}" ? 1 : 0;
            EXPECT_TRUE(isRun || line == "{\"child\":1}" || line == "{\"parent\":1}") << line;
            if (isRun) {
                const int process = numbersOf(line).first;
                ASSERT_TRUE(process >= 0 && process < THREADS + CHILDREN) << line;
                ++lines[static_cast<size_t>(process)];
            }
        }
    }
    EXPECT_EQ(CHILDREN * LINES, audited);
    for (int process = THREADS; process < THREADS + CHILDREN; ++process) {
        EXPECT_EQ(LINES, lines[static_cast<size_t>(process)]);
    }
}

} // namespace
} // namespace ovra::log

#include "LogFixture.h"

#include <thread>
#include <unistd.h>

namespace ovra::log {
namespace {

constexpr auto ERROR = spdlog::level::err;

class LogServiceTest : public LogFixture
{
};

TEST_F(LogServiceTest, ARunLineHasDateProcessThreadLevelProductAndText)
{
    ASSERT_EQ(0, start());
    service.run(ERROR, "my product", "it\nfailed");
    EXPECT_EQ((std::vector<std::string>{"2026-11-21 10:20:30.045 " + std::to_string(getpid()) + " " +
                                        std::to_string(gettid()) + " ERROR my\\x20product it\\nfailed"}),
              linesOf(runLog()));
}

TEST_F(LogServiceTest, EachLineHasItsOwnTime)
{
    ASSERT_EQ(0, start());
    const std::vector<std::pair<const char*, int>> times = {
        {"2026-11-21 10:20:30", 0},  {"2026-11-21 10:20:30", 7}, {"2026-11-21 10:20:30", 999},
        {"2026-11-21 10:20:31", 40}, {"2026-11-21 10:20:30", 7}, {"2026-11-21 00:00:00", 0}};
    const std::vector<std::string> begin = {"10:20:30.000", "10:20:30.007", "10:20:30.999",
                                            "10:20:31.040", "10:20:30.007", "00:00:00.000"};
    for (const auto& [local, milliseconds] : times) {
        setTime(local, milliseconds);
        service.run(INFO, "p", "line");
        service.interfaceCall(INFO, {});
    }
    for (const auto& file : {runLog(), interfaceLog()}) {
        const std::vector<std::string> lines = linesOf(file);
        ASSERT_EQ(begin.size(), lines.size());
        for (size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ("2026-11-21 " + begin[i] + " ", lines[i].substr(0, 24)) << file;
        }
    }
}

TEST_F(LogServiceTest, AnInterfaceRecordNamesItsElevenFields)
{
    ASSERT_EQ(0, start());
    service.interfaceCall(INFO, {"prod", "1", "", "getLun", "", "", "", "2026-11-21 10:20:30 001",
                                 "2026-11-21 10:20:30 045", "0", "a\"b"});
    service.interfaceCall(ERROR, {});
    const std::vector<std::string> lines = linesOf(interfaceLog());
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ(
        "INFO product=\"prod\" type=\"1\" protocol=\"\" operation=\"getLun\" source=\"\" target=\"\" "
        "transaction=\"\" start=\"2026-11-21 10:20:30 001\" end=\"2026-11-21 10:20:30 045\" result=\"0\" "
        "extension=\"a\\\"b\"",
        withoutOrigin(lines[0]));
    EXPECT_EQ(0U, withoutOrigin(lines[1]).find("ERROR product=\"\""));
}

TEST_F(LogServiceTest, DataCannotForgeALine)
{
    ASSERT_EQ(0, start());
    service.run(INFO, "p", "name\n2026-11-21 10:20:30.045 1 1 ERROR p forged");
    service.interfaceCall(INFO, {"p", "1", "", "x\" result=\"0", "\n", "", "", "", "", "7", ""});
    EXPECT_EQ(1U, linesOf(runLog()).size());
    ASSERT_EQ(1U, linesOf(interfaceLog()).size());
    const std::string line = withoutOrigin(linesOf(interfaceLog())[0]);
    EXPECT_NE(std::string::npos, line.find(" operation=\"x\\\" result=\\\"0\" source=\"\\n\" "));
    // Only one result stands at the start of a field.
    const size_t result = line.find(" result=\"");
    EXPECT_EQ(" result=\"7\"", line.substr(result, 11));
    EXPECT_EQ(std::string::npos, line.find(" result=\"", result + 1));
}

TEST_F(LogServiceTest, BeforeStartAndAfterStopLinesAreDroppedQuietly)
{
    service.run(INFO, "p", "before");
    service.interfaceCall(INFO, {});
    EXPECT_FALSE(std::filesystem::exists(logs()));
    ASSERT_EQ(0, start());
    service.run(INFO, "p", "between");
    ASSERT_EQ(0, service.stop("product"));
    service.run(INFO, "p", "after");
    ASSERT_EQ(1U, linesOf(runLog()).size());
    EXPECT_EQ("INFO p between", withoutOrigin(linesOf(runLog())[0]));
    EXPECT_EQ(0U, service.dropped());
}

TEST_F(LogServiceTest, TellsTheDirectoryThatIsReallyInUse)
{
    EXPECT_STREQ("", service.directory());
    ASSERT_EQ(0, start());
    ASSERT_EQ(0, service.stop("product"));
    const char* const first = service.directory();
    EXPECT_EQ(logs(), first);

    writeFile(folder / "blocked", "");
    ASSERT_EQ(0, service.start("product", "", (folder / "blocked/logs").string()));
    EXPECT_EQ(state(), service.directory());
    std::filesystem::remove_all(state());
    writeFile(state(), "");
    now += std::chrono::milliseconds(20);
    service.run(INFO, "p", "nowhere to be written");
    EXPECT_STREQ("", service.directory());
    EXPECT_EQ(logs(), first) << "a text that was told before has changed";
}

TEST_F(LogServiceTest, LogsUntilTheLastStartIsStopped)
{
    ASSERT_EQ(0, start("a"));
    ASSERT_EQ(0, start("a"));
    ASSERT_EQ(0, service.start("b", "", (folder / "elsewhere").string()));
    EXPECT_EQ(-1, service.stop("c"));
    EXPECT_EQ(0, service.stop("a"));
    EXPECT_EQ(0, service.stop("a"));
    EXPECT_EQ(-1, service.stop("a"));
    service.run(INFO, "any", "still");
    EXPECT_EQ(0, service.stop("b"));
    EXPECT_EQ(-1, service.stop("b"));
    service.run(INFO, "any", "no more");
    EXPECT_EQ(1U, linesOf(runLog()).size());
    ASSERT_EQ(0, start("a"));
    service.run(INFO, "any", "again");
    EXPECT_EQ(2U, linesOf(runLog()).size());
}

TEST_F(LogServiceTest, TheConfiguredLevelHolds)
{
    writeFile(iniFile(), "[run_log]\nlevel = warn\n");
    ASSERT_EQ(0, start());
    EXPECT_EQ(2, service.levelInForce());
    service.run(spdlog::level::debug, "p", "debug");
    service.run(INFO, "p", "info");
    service.run(spdlog::level::warn, "p", "warn");
    service.run(ERROR, "p", "error");
    service.interfaceCall(INFO, {});
    EXPECT_EQ(2U, linesOf(runLog()).size());
    EXPECT_EQ(1U, linesOf(interfaceLog()).size());
}

TEST_F(LogServiceTest, AConfiguredDirectoryReplacesTheOneHandedOver)
{
    writeFile(iniFile(), "[files]\ndirectory = " + (folder / "configured/deep").string() + "\n");
    ASSERT_EQ(0, start());
    service.run(INFO, "p", "text");
    EXPECT_TRUE(std::filesystem::exists(folder / "configured/deep/Tessel_run_2026-11-21.log"));
    EXPECT_FALSE(std::filesystem::exists(logs()));
}

TEST_F(LogServiceTest, AConfigurationThatCannotBeUsedIsReportedInTheRunLog)
{
    writeFile(iniFile(), "[run_log]\nlevel = loud\n");
    ASSERT_EQ(0, start());
    EXPECT_EQ(1, service.levelInForce());
    ASSERT_EQ(1U, linesOf(runLog()).size());
    EXPECT_EQ("WARN Ovra-Log-API " + iniFile().string() +
                  ": level must be debug, info, warn or error, not \"loud\": info is used",
              withoutOrigin(linesOf(runLog())[0]));
}

TEST_F(LogServiceTest, AConfigurationThatIsTooLargeIsNotReadByHalf)
{
    constexpr size_t MOST = 64UL * 1024;
    const std::string setting = "[run_log]\nlevel = error\n";
    writeFile(iniFile(), setting + std::string(MOST - setting.size(), '\n'));
    ASSERT_EQ(0, start());
    EXPECT_EQ(3, service.levelInForce());
    service.stop("product");
    writeFile(iniFile(), setting + std::string(MOST + 1 - setting.size(), '\n'));
    ASSERT_EQ(0, start());
    EXPECT_EQ(1, service.levelInForce());
}

TEST_F(LogServiceTest, MayBeUsedByManyThreads)
{
    ASSERT_EQ(0, start());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int n = 0; n < 200; ++n) {
                service.start("more", "", "");
                service.run(INFO, "p", std::to_string(n));
                service.interfaceCall(INFO, {});
                service.stop("more");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(800U, linesOf(runLog()).size());
    EXPECT_EQ(800U, linesOf(interfaceLog()).size());
}

} // namespace
} // namespace ovra::log

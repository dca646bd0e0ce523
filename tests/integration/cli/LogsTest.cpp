// Where the logs are, what is written to them, and what is measured.

#include "HostFixture.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <thread>

using ::testing::HasSubstr;

namespace {

class LogsCommand : public CliTest
{
protected:
    std::string directory() const { return cli.json({"logs"}).json()["directory"].asString(); }

    static void append(const std::string& file, const std::string& text)
    {
        std::ofstream(file, std::ios::app) << text << std::flush;
    }
};

TEST_F(LogsCommand, ShowsTheDirectoryAndTheNewestFileOfEachKind)
{
    make({"lun", "create", "--name", "l", "--size", "1MiB", "--pool", "0"});
    const Json::Value found = cli.json({"logs"}).json();
    for (const char* const kind : {"run", "interface", "audit"}) {
        EXPECT_TRUE(std::filesystem::exists(found["newest"][kind].asString())) << kind;
        EXPECT_THAT(found["newest"][kind].asString(), HasSubstr(found["directory"].asString()));
    }
    EXPECT_FALSE(cli.json({"logs", "--log", "audit"}).json()["newest"].isMember("run"));
    EXPECT_THAT(expect(0, {"logs"}).out, HasSubstr(found["newest"]["run"].asString()));
}

TEST_F(LogsCommand, FollowsOverANewPartAndANewDay)
{
    const std::string place = directory();
    const std::string mark = "mark-" + std::to_string(getpid());
    const std::string day =
        place + "/Tessel_audit_2999-12-30.log"; // of no program that runs beside this test
    const std::string part = place + "/Tessel_audit_2999-12-30_2.log";
    const std::string next = place + "/Tessel_audit_2999-12-31.log";
    std::atomic<bool> isOver{false};
    std::thread writing([&] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        append(day, mark + " first\nunfini");
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        append(day, "shed " + mark + "\n");
        append(part, mark + " part\n");
        append(next, mark + " next day\n" + mark + " last\n");
        while (!isOver) { // a follower ends at the first line that nobody takes
            append(next, mark + "\n");
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    });
    const Outcome outcome = cli.shell("tesselctl logs --follow --log audit | grep --line-buffered -e " +
                                      mark + " | sed '/last/q'");
    isOver = true;
    writing.join();
    EXPECT_EQ(outcome.out, mark + " first\nunfinished " + mark + "\n" + mark + " part\n" + mark +
                               " next day\n" + mark + " last\n");
    for (const std::string& file : {day, part, next}) {
        std::filesystem::remove(file);
    }
}

class MetricsCommand : public HostTest
{
};

TEST_F(MetricsCommand, ToldOfAreAttachesScansRemovalsDisksAndLeftoversInOneFileThatIsReplaced)
{
    addLunDisk();
    expect(0, {"attach", "lun", lun});
    expect(0, {"detach", "lun", lun});
    const std::string file = folder.path() + "/tessel.prom";
    folder.write("tessel.prom", "old\n");
    expect(0, {"metrics", "--textfile", file});
    std::ifstream written(file);
    const std::string text{std::istreambuf_iterator<char>(written), {}};
    for (const char* const metric :
         {"tessel_attach_seconds_count{operation=\"", "tessel_removal_seconds_sum{operation=\"",
          "# TYPE tessel_scan_seconds summary", "tessel_rescan_lock_wait_seconds_count ",
          "tessel_dead_disks ", "# TYPE tessel_lun_paths gauge", "tessel_leftover_objects "}) {
        EXPECT_THAT(text, HasSubstr(metric));
    }
    EXPECT_EQ(text.substr(text.size() - 6), "# EOF\n");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0644));
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(entry.path().string().find("tessel.prom."), std::string::npos) << "a temporary file stays";
    }
    EXPECT_THAT(expect(1, {"metrics", "--textfile", folder.path() + "/none/tessel.prom"}).err,
                HasSubstr("cannot be written"));
}

TEST_F(MetricsCommand, PassThePromtoolCheck)
{
    addLunDisk();
    expect(0, {"attach", "lun", lun});
    const std::string file = folder.path() + "/tessel.prom";
    expect(0, {"metrics", "--textfile", file});
    if (std::system("command -v promtool >/dev/null") != 0) {
        GTEST_SKIP() << "promtool (package prometheus) is not installed";
    }
    EXPECT_EQ(std::system(("promtool check metrics <" + file).c_str()), 0);
}

} // namespace

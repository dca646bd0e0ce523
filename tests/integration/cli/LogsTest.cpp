// Where the logs are, what is written to them, and what is measured.

#include "HostFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
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
    EXPECT_THAT(expect(0, {"logs"}).out,
                HasSubstr("\nrun        " + found["newest"]["run"].asString() + "\n"));
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
protected:
    /** A session's SCSI host, as the kernel shows it. */
    void addSession(int number) const
    {
        const std::string session = "session" + std::to_string(number);
        const std::string device = "sys/devices/platform/host" + std::to_string(number) + "/" + session;
        folder.write(device + "/state", "LOGGED_IN\n");
        folder.write(device + "/initiatorname", iqn + "\n");
        folder.write(device + "/targetname", "iqn.2026-01.test:array\n");
        link("sys/class/iscsi_session/" + session, "../../" + device.substr(4));
    }
    /** A path to a LUN of a WWN whose last four bytes are its number. */
    void addPath(const std::string& name, const std::string& address, const std::string& wwnOfLun,
                 const std::string& state) const
    {
        const std::string device = "sys/devices/" + address;
        std::string page("\x00\x83\x00\x14\x01\x03\x00\x10", 8);
        for (size_t i = 0; i < wwnOfLun.size(); i += 2) {
            page += static_cast<char>(std::stoi(wwnOfLun.substr(i, 2), nullptr, 16));
        }
        folder.write(device + "/vpd_pg83", page);
        folder.write(device + "/state", state + "\n");
        folder.write(device + "/block/" + name + "/size", "131072\n");
        folder.write("sys/block/" + name + "/size", "131072\n");
        link("sys/class/scsi_device/" + address + "/device", "../../../" + device.substr(4));
        link("sys/block/" + name + "/device", "../../" + device.substr(4));
    }

    /** The value of a metric with its labels, as it stands in the text; empty where it does not. */
    static std::string valueOf(const std::string& text, const std::string& metric)
    {
        const size_t line = ("\n" + text).find("\n" + metric + " ");
        const size_t value = line + metric.size() + 1;
        return line == std::string::npos ? "" : text.substr(value, text.find('\n', value) - value);
    }

private:
    void link(const std::string& from, const std::string& to) const
    {
        const std::filesystem::path place = folder.path() + "/" + from;
        std::filesystem::create_directories(place.parent_path());
        std::filesystem::create_directory_symlink(to, place);
    }
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

TEST_F(MetricsCommand, CountThePathsOfEachLunAndTheDeadDisks)
{
    const std::string one = "600a0b8000f1c1d2aabbccdd00000007";
    const std::string two = "600a0b8000f1c1d2aabbccdd00000008";
    const std::string four = "600a0b8000f1c1d2aabbccdd00000112";
    for (int number = 1; number <= 4; ++number) {
        addSession(number);
    }
    addPath("sdb", "1:0:0:1", one, "running");
    addPath("sdc", "1:0:0:2", two, "running");
    addPath("sdd", "2:0:0:2", two, "running");
    addPath("sde", "1:0:0:3", four, "running");
    addPath("sdf", "2:0:0:3", four, "transport-offline");
    addPath("sdg", "3:0:0:3", four, "running");
    addPath("sdh", "4:0:0:3", four, "offline");
    addPath("sdi", "9:0:0:1", one, "running"); // of a host that is no initiator's
    const std::string file = folder.path() + "/tessel.prom";
    expect(0, {"metrics", "--textfile", file});
    std::ifstream written(file);
    const std::string text{std::istreambuf_iterator<char>(written), {}};
    const auto paths = [&](const std::string& wwnOfLun, const std::string& id, const std::string& state) {
        return valueOf(text, "tessel_lun_paths{wwn=\"" + wwnOfLun + "\",lun=\"" + id + "\",state=\"" + state +
                                 "\"}");
    };
    EXPECT_EQ(paths(one, "7", "running"), "1") << text;
    EXPECT_EQ(paths(two, "8", "running"), "2");
    EXPECT_EQ(paths(four, "274", "running"), "2");
    EXPECT_EQ(paths(four, "274", "dead"), "2");
    EXPECT_EQ(paths(one, "7", "dead"), "") << "there is none";
    EXPECT_EQ(valueOf(text, "tessel_dead_disks"), "2");
    EXPECT_EQ(valueOf(text, "tessel_leftover_objects"), "0");
    if (std::system("command -v promtool >/dev/null") == 0) {
        EXPECT_EQ(std::system(("promtool check metrics <" + file).c_str()), 0);
    }
}

TEST_F(MetricsCommand, CountWhatTheAuditLogTells)
{
    const std::string logs = cli.json({"logs"}).json()["directory"].asString();
    const auto counted = [&](const std::string& metric) {
        const std::string text = expect(0, {"metrics"}).out;
        const std::string value = valueOf(text, metric);
        return value.empty() ? 0 : std::stol(value);
    };
    const std::string attaches = "tessel_attach_seconds_count{operation=\"ensureVisible\",result=\"done\"}";
    const std::string detaches = "tessel_removal_seconds_count{operation=\"ensureHidden\",result=\"done\"}";
    const long attached = counted(attaches);
    const long detached = counted(detaches);
    addLunDisk();
    expect(0, {"attach", "lun", lun});
    expect(0, {"detach", "lun", lun});
    EXPECT_GE(counted(attaches), attached + 1) << "other programs may write to " << logs;
    EXPECT_GE(counted(detaches), detached + 1);
}

TEST_F(MetricsCommand, PassThePromtoolCheck)
{
    addLunDisk();
    expect(0, {"attach", "lun", lun});
    const std::string file = folder.path() + "/tessel.prom";
    expect(0, {"metrics", "--textfile", file});
    EXPECT_EQ(std::system(("promtool check metrics <" + file).c_str()), 0)
        << "promtool comes with prometheus";
}

} // namespace

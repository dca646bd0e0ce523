// LUNs and snapshots as disks of this host. The folder that stands for the host has the links and files that
// a kernel 6.1 shows of two iSCSI sessions, their disks and multipath maps.

#include "HostFixture.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

namespace fs = std::filesystem;

/** A page 0x83 of a target, without its first designator. */
constexpr const char* REST_OF_PAGE = "020100294c494f2d4f52472046494c45494f3a303030303030303030303030303030303"
                                     "03030303030303036005194000400000001519500"
                                     "040000000001060004000000005398002469716e2e323032302d30312e746573742e6c6"
                                     "1623a61727261792c742c3078303030310053a8"
                                     "00";

std::string bytesOf(const std::string& hexadecimal)
{
    std::string bytes;
    for (size_t i = 0; i < hexadecimal.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hexadecimal.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

class DiskTest : public HostTest
{
protected:
    void addSession(const std::string& number, const std::string& initiator) const
    {
        const std::string session = "session" + number;
        const std::string way =
            "devices/platform/host" + number + "/" + session + "/iscsi_session/" + session;
        folder.write("sys/" + way + "/state", "LOGGED_IN\n");
        folder.write("sys/" + way + "/targetname", "iqn.2020-01.test.lab:array\n");
        folder.write("sys/" + way + "/initiatorname", initiator + "\n");
        link("../../" + way, "sys/class/iscsi_session/" + session);
    }

    /** @param way number of the session. */
    void addPath(const std::string& name, const std::string& way, unsigned number,
                 const std::string& identity, const std::string& state = "running") const
    {
        const std::string address = way + ":0:0:" + std::to_string(number);
        const std::string device =
            "devices/platform/host" + way + "/session" + way + "/target" + way + ":0:0/" + address;
        const std::string block = device + "/block/" + name;
        folder.write("sys/" + block + "/dev", "8:" + std::to_string(number * 16) + "\n");
        folder.write("sys/" + block + "/size", "2048\n");
        folder.write("sys/" + block + "/ro", "0\n");
        fs::create_directories(folder.path() + "/sys/" + block + "/holders");
        folder.write("sys/" + device + "/state", state + "\n");
        folder.write("sys/" + device + "/vpd_pg83", bytesOf("008300a101030010" + identity + REST_OF_PAGE));
        link("../../../" + address, "sys/" + block + "/device");
        link("../" + block, "sys/block/" + name);
        link("../../../" + device, "sys/class/scsi_device/" + address + "/device");
    }

    void addMap(const std::string& node, const std::string& identity, const Words& paths) const
    {
        const std::string way = "devices/virtual/block/" + node;
        folder.write("sys/" + way + "/dev", "254:" + node.substr(3) + "\n");
        folder.write("sys/" + way + "/size", "2048\n");
        folder.write("sys/" + way + "/dm/name", "3" + identity + "\n");
        folder.write("sys/" + way + "/dm/uuid", "mpath-3" + identity + "\n");
        link("../" + way, "sys/block/" + node);
        for (const std::string& path : paths) {
            const std::string block = fs::canonical(folder.path() + "/sys/block/" + path);
            fs::create_directory_symlink(folder.path() + "/sys/" + way, block + "/holders/" + node);
            fs::create_directories(folder.path() + "/sys/" + way + "/slaves");
            fs::create_directory_symlink(block, folder.path() + "/sys/" + way + "/slaves/" + path);
        }
    }

    void link(const std::string& to, const std::string& from) const
    {
        fs::create_directories(fs::path(folder.path() + "/" + from).parent_path());
        fs::create_directory_symlink(to, folder.path() + "/" + from);
    }

    /** Two sessions, and the LUN shown over both. */
    void showLun() const
    {
        bindAll();
        addSession("1", iqn);
        addSession("2", iqn);
        addPath("sdc", "1", 2, wwn);
        addPath("sdf", "2", 2, wwn, "offline");
    }

    Json::Value list() const
    {
        const Outcome outcome = cli.json({"disk", "list"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome;
        return outcome.json();
    }

    bool isShown() const { return cli.json({"lun", "list", "--host", host}).json().size() == 1; }
};

TEST_F(DiskTest, ListTellsOfADiskItsMapItsPathsAndItsUses)
{
    showLun();
    addMap("dm-0", wwn, {"sdc", "sdf"});
    folder.write("proc/self/mountinfo",
                 "41 30 254:0 / /data rw,relatime - ext4 /dev/mapper/3" + wwn + " rw,stripe=8192\n");
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 1U) << disks;
    const Json::Value disk = disks[0];
    EXPECT_EQ(disk["path"], "/dev/mapper/3" + wwn);
    EXPECT_EQ(disk["size"].asUInt64(), 1U << 20);
    EXPECT_EQ(disk["wwn"], wwn);
    EXPECT_EQ(disk["object"], "LUN");
    EXPECT_EQ(disk["id"], lun);
    EXPECT_EQ(disk["name"], "db01");
    EXPECT_TRUE(disk["shown"].asBool());
    ASSERT_EQ(disk["paths"].size(), 2U);
    EXPECT_EQ(disk["paths"][0]["device"], "/dev/sdc");
    EXPECT_EQ(disk["paths"][0]["address"], "1:0:0:2");
    EXPECT_EQ(disk["paths"][0]["state"], "running");
    EXPECT_EQ(disk["paths"][1]["state"], "offline");
    ASSERT_EQ(disk["uses"].size(), 1U) << "the map is a part of the disk, and no use of it";
    EXPECT_EQ(disk["uses"][0], "dm-0 is mounted on /data");

    const Outcome table = expect(0, {"disk", "list"});
    EXPECT_THAT(table.out, HasSubstr("DEVICE"));
    EXPECT_THAT(table.out,
                AllOf(HasSubstr("LUN " + lun), HasSubstr("1 MiB"), HasSubstr("db01"), HasSubstr("yes"),
                      HasSubstr("sdc running, sdf offline"), HasSubstr("dm-0 is mounted on /data")));
    EXPECT_EQ(table.err, "");
}

TEST_F(DiskTest, ListReadsNoMoreThanWhatTheArrayShowsHoweverManyPathsThereAre)
{
    showLun();
    const auto requestsOfAList = [&] {
        array.clearJournal();
        list();
        return array.journal().size();
    };
    const auto ofOne = requestsOfAList();
    const auto ids = array.bulkLuns(20, lunGroup);
    for (unsigned i = 0; i < ids.size(); ++i) {
        const std::string identity = array.record("lun", ids[i])["WWN"].asString();
        addPath(std::string("sdx") + static_cast<char>('a' + i), "1", 3 + i, identity);
        addPath(std::string("sdy") + static_cast<char>('a' + i), "2", 3 + i, identity);
    }
    EXPECT_EQ(requestsOfAList(), ofOne + ids.size()) << "the SDK's list reads each of its objects";
    EXPECT_EQ(list().size(), 21U);
}

TEST_F(DiskTest, ListTellsDisksThatTheArrayNoLongerShows)
{
    showLun();
    const std::string hidden = array.createLun("hidden");
    addPath("sdg", "1", 3, array.record("lun", hidden)["WWN"].asString());
    const std::string deleted = array.createLun("deleted");
    addPath("sdh", "1", 4, array.record("lun", deleted)["WWN"].asString(), "transport-offline");
    array.remove("lun", deleted);
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 3U) << disks;
    EXPECT_TRUE(disks[0]["shown"].asBool());
    EXPECT_EQ(disks[1]["path"], "/dev/sdg");
    EXPECT_EQ(disks[1]["id"], hidden);
    EXPECT_EQ(disks[1]["name"], "hidden");
    EXPECT_FALSE(disks[1]["shown"].asBool());
    EXPECT_EQ(disks[2]["path"], "/dev/sdh");
    EXPECT_TRUE(disks[2]["object"].isNull()) << "known by its neighbours on the target alone";
    EXPECT_TRUE(disks[2]["name"].isNull());
    EXPECT_FALSE(disks[2]["shown"].asBool());
}

TEST_F(DiskTest, ListKnowsTheDiskOfAHiddenLunThatHasNoNeighbours)
{
    addSession("1", iqn);
    addPath("sdc", "1", 2, wwn);
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 1U) << disks;
    EXPECT_EQ(disks[0]["id"], lun);
    EXPECT_FALSE(disks[0]["shown"].asBool());
}

TEST_F(DiskTest, ListTakesANumberThatCameToAnotherLunForTheLunThatTheKernelFound)
{
    showLun();
    addPath("sdg", "1", 3, wwn.substr(0, 24) + "00000063"); // of a LUN 99 that is gone
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 2U) << disks;
    EXPECT_FALSE(disks[1]["shown"].asBool());
}

TEST_F(DiskTest, ListLeavesOutTheDisksOfOtherArraysAndAsksAboutFewOfThem)
{
    showLun();
    addSession("3", "iqn.2024-05.org.example:elsewhere");
    for (unsigned i = 0; i < 25; ++i) { // their LUN numbers are in use on this array too
        addPath(std::string("sdy") + static_cast<char>('a' + i), "3", i,
                "6aaaaaaaaaaaaaaa" + std::to_string(10000000 + i) + "0000000" + (i % 2 == 0 ? "1" : "2"));
    }
    array.clearJournal();
    EXPECT_EQ(list().size(), 1U);
    unsigned long reads = 0;
    for (const Json::Value& request : array.journal()) {
        const std::string path = request["path"].asString();
        reads +=
            path.find("/lun/") != std::string::npos && path.find("associate") == std::string::npos ? 1 : 0;
    }
    EXPECT_GE(reads, 8U);
    EXPECT_LE(reads, 10U);
}

TEST_F(DiskTest, ListKnowsATargetByTheLunThatIsShownThereBehindManyThatAreGone)
{
    showLun();
    addSession("3", iqn);
    for (unsigned i = 0; i < 10; ++i) {
        addPath(std::string("sdb") + static_cast<char>('a' + i), "3", i,
                wwn.substr(0, 24) + "0000006" + std::to_string(i));
    }
    addPath("sdz", "3", 20, wwn);
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 11U) << disks;
}

TEST_F(DiskTest, ListTellsSnapshots)
{
    showLun();
    const std::string snapshot = array.createSnapshot(lun, "before");
    expect(0, {"lungroup", "add", lunGroup, "--snapshot", snapshot});
    addPath("sdg", "1", 3, array.record("snapshot", snapshot)["WWN"].asString());
    const Json::Value disks = list();
    ASSERT_EQ(disks.size(), 2U) << disks;
    EXPECT_EQ(disks[1]["object"], "snapshot");
    EXPECT_EQ(disks[1]["id"], snapshot);
    EXPECT_EQ(disks[1]["name"], "before");
    EXPECT_TRUE(disks[1]["shown"].asBool());
}

TEST_F(DiskTest, ListOfAHostWithoutSessionsIsEmpty)
{
    EXPECT_EQ(expect(0, {"disk", "list"}).out, "No disks.\n");
    EXPECT_EQ(list().size(), 0U);
}

TEST_F(DiskTest, ListSaysWhenAUseMayBeHidden)
{
    showLun();
    fs::remove(folder.path() + "/proc/self/mountinfo");
    EXPECT_THAT(expect(0, {"disk", "list"}).err, HasSubstr("not every use of a disk can be told"));
}

TEST_F(DiskTest, ListOfAnArrayThatFailsIsAFailure)
{
    showLun();
    addPath("sdg", "1", 3, wwn.substr(0, 24) + "00000063");
    array.addErrorFault("GET", "/lun/99", 1077949999);
    const Outcome outcome = expect(3, {"disk", "list"});
    EXPECT_EQ(outcome.out, "");
}

TEST_F(DiskTest, AttachWithoutASessionSaysWhatToDoAndReleaseHidesAgain)
{
    const Outcome attached = expect(1, {"disk", "attach", "lun", lun});
    EXPECT_EQ(attached.out, "");
    EXPECT_THAT(attached.err, AllOf(HasSubstr("LUN " + lun + ": this host has no iSCSI session of " + iqn +
                                              " that is online; "
                                              "log in to the array's target"),
                                    HasSubstr("run log"), Not(HasSubstr("Exception"))));
    EXPECT_EQ(attached.err.find('\n'), attached.err.size() - 1) << "one line";
    EXPECT_TRUE(isShown());
    EXPECT_EQ(expect(1, {"disk", "attach", "lun", lun, "--lock-seconds", "0", "--find-seconds", "0",
                         "--map-seconds", "0"})
                  .err,
              attached.err)
        << "not to wait at all is a limit too";
    EXPECT_EQ(expect(0, {"disk", "release", "lun", lun}).out,
              "LUN " + lun + " is no disk of this host any more\n");
    EXPECT_FALSE(isShown());
    const Outcome again = cli.json({"disk", "release", "lun", lun});
    ASSERT_EQ(again.exitCode, 0) << again;
    EXPECT_EQ(again.json()["action"], "disk release");
    EXPECT_FALSE(again.json()["visible"].asBool());
}

TEST_F(DiskTest, ReleaseTellsThatOthersStillShowTheLun)
{
    bindAll();
    const Outcome outcome = expect(0, {"disk", "release", "lun", lun});
    EXPECT_THAT(outcome.err, HasSubstr("stays visible to this host through LUN groups of others"));
    EXPECT_TRUE(isShown());
}

TEST_F(DiskTest, APortWwnIsAnInitiatorToo)
{
    const std::string port = "2100000011112222";
    make({"initiator", "fc", "create", port, "--host", host});
    EXPECT_THAT(expect(1, {"disk", "attach", "lun", lun, "--initiator", port}).err,
                HasSubstr("this host has no FC port " + port + " that is online"));
    expect(0, {"disk", "release", "lun", lun, "--initiator", port});
    EXPECT_FALSE(isShown());
}

TEST_F(DiskTest, WhatTheArrayDoesNotKnowEndsWithCode4)
{
    for (const char* verb : {"attach", "release", "verify"}) {
        expect(4, {"disk", verb, "lun", "99"});
        expect(4, {"disk", verb, "snapshot", "99"});
        expect(4, {"disk", verb, "lun", lun, "--initiator", "iqn.no-such"});
    }
    EXPECT_EQ(cli.json({"disk", "attach", "lun", "99"}).errorJson()["error"]["exitCode"].asInt(), 4);
}

TEST_F(DiskTest, VerifyRefusesWhatIsNoDiskAndNeedsNoInitiatorForADevice)
{
    fs::remove(folder.path() + "/etc/iscsi/initiatorname.iscsi");
    EXPECT_THAT(expect(1, {"disk", "verify", "lun", lun, "/dev/null"}).err,
                HasSubstr("/dev/null is no SCSI disk and no multipath map of this host"));
    EXPECT_THAT(expect(1, {"disk", "verify", "lun", lun}).err, HasSubstr("--initiator"));
    cli.environment.erase("TESSELCTL_ROOT");
    EXPECT_THAT(expect(1, {"disk", "verify", "lun", lun, "--initiator", iqn}).err,
                HasSubstr("no disk of this host answers as it"));
    expect(2, {"disk", "verify", "lun", lun, "/dev/sda", "--step-seconds", "0"});
}

} // namespace

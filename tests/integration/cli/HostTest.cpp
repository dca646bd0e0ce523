#include "HostFixture.h"

#include <linux/capability.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <utility>

using ::testing::HasSubstr;

namespace {

struct Use
{
    const char* name;
    const char* file;
    const char* content;
    const char* said;
};

void PrintTo(const Use& one, std::ostream* stream)
{
    *stream << one.name;
}

class DiskInUse : public HostTest, public ::testing::WithParamInterface<Use>
{
};

const Use USES[] = {
    {"DiskMounted", "proc/self/mountinfo", "30 1 8:32 / /data rw shared:1 - ext4 /dev/sdc rw\n",
     "sdc is mounted on /data"},
    {"PartitionMounted", "proc/self/mountinfo", "30 1 8:33 / /my\\040data rw - ext4 /dev/sdc1 rw\n",
     "sdc1 is mounted on /my data"},
    {"FileSystemWithANumberOfItsOwn", "proc/self/mountinfo", "30 1 0:44 / /b rw - btrfs /dev/sdc rw\n",
     "sdc is mounted on /b"},
    {"MountOfAnotherNamespace", "proc/4711/mountinfo", "30 1 8:32 / /inside rw - ext4 /dev/sdc rw\n",
     "sdc is mounted on /inside"},
    {"SwappedTo", "proc/swaps", "Filename Type Size Used Priority\n/dev/sdc1 partition 1 0 -2\n",
     "sdc1 is swapped to"},
    {"HeldByAMap", "sys/block/sdc/holders/dm-0/x", "", "sdc is held by dm-0"},
    {"PartitionHeld", "sys/block/sdc/sdc1/holders/md0/x", "", "sdc1 is held by md0"},
};

TEST_P(DiskInUse, IsNotRemovedAndWhatHoldsItIsNamed)
{
    addLunDisk();
    folder.write(GetParam().file, GetParam().content);
    const Outcome outcome = expect(1, {"remove", "lun", lun});
    EXPECT_THAT(outcome.err, HasSubstr(GetParam().said));
    EXPECT_THAT(outcome.err, HasSubstr("--force"));
    expect(0, {"attach", "lun", lun});
    expect(1, {"detach", "lun", lun, "--remove-devices"});
    EXPECT_TRUE(diskIsThere());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 1U) << "nothing was detached";
}

INSTANTIATE_TEST_SUITE_P(Cli, DiskInUse, ::testing::ValuesIn(USES),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(HostTest, WhatStandsOnAMultipathMapKeepsItsPathsInUse)
{
    addLunDisk();
    folder.write("sys/block/sdc/holders/dm-0/x", "");
    folder.write("sys/block/dm-0/dev", "253:0\n");
    folder.write("sys/block/dm-0/dm/name", "mpatha\n");
    folder.write("proc/self/mountinfo", "30 1 253:0 / /data rw - ext4 /dev/mapper/mpatha rw\n");
    const Outcome outcome = expect(1, {"remove", "lun", lun});
    EXPECT_THAT(outcome.err, HasSubstr("sdc is held by dm-0 (mpatha); dm-0 is mounted on /data"));
}

TEST_F(HostTest, AFolderInPlaceOfTheHostDoesNotHideTheUsesOfTheRealOne)
{
    addLunDisk(); // free, as the folder shows it
    const Folder real;
    std::filesystem::create_directories(real.path() + "/block");
    std::filesystem::copy(folder.path() + "/sys/block/sdc", real.path() + "/block/sdc",
                          std::filesystem::copy_options::recursive);
    real.write("block/sdc/holders/dm-0/x", "");
    const std::string block = real.path() + "/block";
    cli.prepare = [block] {
        if (unshare(CLONE_NEWIPC | CLONE_NEWNS) != 0 || mount("", "/", "", MS_REC | MS_PRIVATE, "") != 0 ||
            mount(block.c_str(), "/sys/block", "", MS_BIND, "") != 0) {
            _exit(126);
        }
    };
    EXPECT_THAT(expect(1, {"remove", "lun", lun}).err, HasSubstr("sdc is held by dm-0"));
    EXPECT_TRUE(diskIsThere());
}

TEST_F(HostTest, ADiskOfWhichTheUsesCannotBeToldIsNotRemoved)
{
    addLunDisk();
    std::filesystem::remove(folder.path() + "/proc/self/mountinfo");
    EXPECT_THAT(expect(1, {"remove", "lun", lun}).err, HasSubstr("whether sdc is in use cannot be told"));
    EXPECT_TRUE(diskIsThere());
}

TEST_F(HostTest, AFreeDiskIsRemovedAndLookedForAfterwards)
{
    addLunDisk();
    const Outcome outcome = cli.json({"remove", "lun", lun});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_EQ(outcome.json()["removedDevices"][0], "sdc");
    EXPECT_FALSE(diskIsThere());
    EXPECT_THAT(expect(0, {"remove", "lun", lun}).out, HasSubstr("no devices"));
}

TEST_F(HostTest, ADiskInUseIsRemovedWithForce)
{
    addLunDisk();
    folder.write("proc/self/mountinfo", "30 1 8:32 / /data rw - ext4 /dev/sdc rw\n");
    expect(0, {"remove", "lun", lun, "--force"});
    EXPECT_FALSE(diskIsThere());
}

TEST_F(HostTest, ADiskThatStaysAfterItsRemovalIsAFailure)
{
    addLunDisk();
    stub("lsscsi", "exit 0");
    EXPECT_THAT(expect(1, {"remove", "lun", lun}).err,
                HasSubstr("still on this host after the removal: sdc"));
}

TEST_F(HostTest, DetachRemovesTheDevicesFirstWhenAskedTo)
{
    expect(0, {"attach", "lun", lun});
    addLunDisk();
    EXPECT_THAT(expect(0, {"detach", "lun", lun, "--remove-devices"}).out, HasSubstr("removed sdc"));
    EXPECT_FALSE(diskIsThere());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 0U);
}

TEST_F(HostTest, ADetachThatIsRefusedRemovesNoDevices)
{
    bindAll();
    addLunDisk();
    EXPECT_THAT(expect(1, {"detach", "lun", lun, "--remove-devices"}).err,
                HasSubstr("LUN group " + lunGroup + " (luns), which no attach has made"));
    EXPECT_TRUE(diskIsThere());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 1U);
    expect(0, {"detach", "lun", lun, "--remove-devices", "--force"});
    EXPECT_FALSE(diskIsThere());
}

TEST_F(HostTest, ADetachThatIsRefusedForAnOwnGroupThatOthersSeeRemovesNoDevices)
{
    expect(0, {"attach", "lun", lun});
    const std::string own = cli.json({"lungroup", "list", "--lun", lun, "--name", "tessel_host_" + host})
                                .json()[0]["ID"]
                                .asString();
    const std::string others = make({"hostgroup", "create", "--name", "others"});
    const std::string second = make({"view", "create", "--name", "second"});
    expect(0, {"view", "add", second, "--lungroup", own});
    expect(0, {"view", "add", second, "--hostgroup", others});
    addLunDisk();
    EXPECT_THAT(expect(1, {"detach", "lun", lun, "--remove-devices"}).err,
                HasSubstr("other hosts may lose it: those of host group " + others + " (others)"));
    EXPECT_TRUE(diskIsThere());
}

TEST_F(HostTest, ADetachThatLeavesDevicesBehindSaysSo)
{
    expect(0, {"attach", "lun", lun});
    addLunDisk();
    EXPECT_EQ(expect(0, {"detach", "lun", lun}).err,
              "tesselctl: this host still has devices of it (sdc), which are dead once it is detached: "
              "use --remove-devices\n");
    EXPECT_TRUE(diskIsThere());
}

TEST_F(HostTest, WithoutTheRightsForItNothingOfTheHostIsTouched)
{
    addLunDisk();
    cli.prepare = [] {
        if (prctl(PR_CAPBSET_DROP, CAP_SYS_RAWIO) != 0) { // gone at the start of the program
            _exit(127);
        }
    };
    const std::vector<std::pair<std::string, Words>> works = {
        {"the scan", {"scan", "lun", lun}},
        {"--scan", {"attach", "lun", lun, "--scan"}},
        {"the removal", {"remove", "lun", lun}},
        {"the attach", {"disk", "attach", "lun", lun}},
        {"the release", {"disk", "release", "lun", lun}},
        {"the verification", {"disk", "verify", "lun", lun, "/dev/sdc"}}};
    for (const auto& [work, words] : works) {
        EXPECT_EQ(expect(1, words).err,
                  "tesselctl: " + work + " writes sysfs and sends SCSI commands: run it as root\n");
    }
    EXPECT_TRUE(diskIsThere());
    EXPECT_FALSE(std::filesystem::exists(folder.path() + "/rescans"));
}

TEST_F(HostTest, AScanThatFindsNoDiskIsAFailureThatTellsWhereToLook)
{
    bindAll();
    const Outcome outcome = expect(1, {"scan", "lun", lun});
    EXPECT_THAT(outcome.err, HasSubstr("no disk of this host carries LUN " + lun));
    EXPECT_THAT(outcome.err, HasSubstr("tesselctl doctor"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() + "/rescans")) << "the buses were rescanned";
    expect(4, {"scan", "snapshot", "99"});
}

TEST_F(HostTest, CtrlCInAScanEndsItWithCode130AndTellsThatTheAttachWasMade)
{
    stub("rescan-scsi-bus.sh", "kill -INT $$");
    const Outcome attached = cli.json({"attach", "lun", lun, "--scan"});
    EXPECT_EQ(attached.exitCode, 130) << attached;
    EXPECT_THAT(attached.errorJson()["error"]["message"].asString(),
                HasSubstr("the attach was made (LUN " + lun));
    const Outcome scanned = expect(130, {"scan", "lun", lun});
    EXPECT_THAT(scanned.err, HasSubstr("was interrupted"));
    EXPECT_EQ(scanned.err.find("no disk of this host"), std::string::npos);
    stub("rescan-scsi-bus.sh", "echo found >&2");
    EXPECT_THAT(expect(1, {"attach", "lun", lun, "--scan"}).err,
                HasSubstr("already), but not the scan: no disk of this host carries"));
}

TEST_F(HostTest, WhatTheHostsToolsPrintDuringAScanIsNoPartOfTheAnswer)
{
    const std::string listed = folder.path() + "/listed";
    stub("lsscsi", "[ -e " + listed + " ] || echo tmp-block\n: >" + listed);
    const Outcome outcome = expect(1, {"scan", "lun", lun});
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("tmp-block\n"));
    std::filesystem::remove(listed);
    std::istringstream lines(cli.json({"scan", "lun", lun}).err);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_EQ(line.front(), '{') << "every line of standard error is JSON";
    }
}

} // namespace

#include "Cli.h"

#include <filesystem>
#include <sched.h>
#include <sys/sem.h>
#include <unistd.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const key_t rescanKey = 1235;

/// A host made of files and of stubs in place of its tools; semaphores are those of a namespace of its own.
class HostTest : public MappingTest
{
protected:
    HostTest()
    {
        cli.environment["TESSELCTL_ROOT"] = folder.path();
        folder.write("proc/self/mountinfo", "25 1 8:2 / / rw - ext4 /dev/sda2 rw\n");
        folder.write("proc/swaps", "Filename Type Size Used Priority\n");
        folder.write("etc/iscsi/initiatorname.iscsi", "InitiatorName=" + iqn + "\n");
        folder.write("dev/disk/by-id/scsi-3600", "");
        wwn = cli.json({"lun", "show", lun}).json()["WWN"].asString();
        addDisk("sda", "8:0", "naa.6000000000000001");
        for (const char* tool : {"sh", "ls", "grep", "which", "timeout", "rm", "multipath"}) {
            const std::string real = std::string("/bin/") + tool;
            std::filesystem::create_directories(folder.path() + "/bin");
            std::filesystem::create_symlink(std::filesystem::exists(real) ? real : "/bin/true",
                                            folder.path() + "/bin/" + tool);
        }
        stub("lsscsi", "exit 0");
        stub("sg_inq", "echo PDT=0");
        stub("rescan-scsi-bus.sh",
             "grep PDT= Device_type= # stub\necho \"$@\" >>" + folder.path() + "/rescans");
        cli.environment["PATH"] = folder.path() + "/bin";
        cli.prepare = [] {
            if (unshare(CLONE_NEWIPC) != 0) {
                _exit(126);
            }
        };
    }

    void SetUp() override
    {
        if (cli.run({"--version"}).exitCode == 126) {
            GTEST_SKIP() << "no rights to make an IPC namespace";
        }
    }

    void stub(const std::string& name, const std::string& script) const
    {
        folder.write("bin/" + name, "#!/bin/sh\n" + script + "\n", 0755);
    }
    void addDisk(const std::string& name, const std::string& device, const std::string& wwid) const
    {
        folder.write("sys/block/" + name + "/dev", device + "\n");
        folder.write("sys/block/" + name + "/device/wwid", wwid + "\n");
    }
    /// The LUN's disk sdc with one partition; its identity is that of page 0x83.
    void addLunDisk() const
    {
        addDisk("sdc", "8:32", "t10.OTHER");
        std::string page("\x00\x83\x00\x14\x01\x03\x00\x10", 8);
        for (size_t i = 0; i < wwn.size(); i += 2) {
            page += static_cast<char>(std::stoi(wwn.substr(i, 2), nullptr, 16));
        }
        folder.write("sys/block/sdc/device/vpd_pg83", page);
        folder.write("sys/block/sdc/sdc1/dev", "8:33\n");
        folder.write("sys/block/sdc/sdc1/partition", "1\n");
        // The kernel's part: a deleted device is gone from sysfs.
        stub("lsscsi", "rm -rf " + folder.path() + "/sys/block/sdc");
    }
    bool diskIsThere() const { return std::filesystem::exists(folder.path() + "/sys/block/sdc"); }

    Folder folder;
    std::string wwn;
};

struct Use
{
    const char* name;
    const char* file;
    const char* content;
    const char* said;
};

class DiskInUse : public HostTest, public ::testing::WithParamInterface<Use>
{
};

const Use uses[] = {
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
    bindAll();
    expect(1, {"detach", "lun", lun, "--remove-devices"});
    EXPECT_TRUE(diskIsThere());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 1U) << "nothing was detached";
}

INSTANTIATE_TEST_SUITE_P(Cli, DiskInUse, ::testing::ValuesIn(uses),
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
    bindAll();
    addLunDisk();
    EXPECT_THAT(expect(0, {"detach", "lun", lun, "--remove-devices"}).out, HasSubstr("removed sdc"));
    EXPECT_FALSE(diskIsThere());
    EXPECT_EQ(cli.json({"lun", "list", "--host", host}).json().size(), 0U);
}

TEST_F(HostTest, ADetachThatLeavesDevicesBehindSaysSo)
{
    bindAll();
    addLunDisk();
    EXPECT_THAT(expect(0, {"detach", "lun", lun}).err, HasSubstr("--remove-devices"));
    EXPECT_TRUE(diskIsThere());
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

Json::Value checkOf(const Outcome& doctor, const std::string& subject)
{
    const Json::Value checks = doctor.json()["checks"];
    for (const auto& check : checks) {
        if (check["subject"].asString().find(subject) != std::string::npos) {
            return check;
        }
    }
    ADD_FAILURE() << "no check of " << subject << " in " << doctor.out;
    return Json::Value(Json::objectValue);
}

TEST_F(HostTest, DoctorFindsAWholeHostFit)
{
    const Outcome outcome = cli.json({"doctor"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome;
    EXPECT_TRUE(outcome.json()["fit"].asBool());
    EXPECT_EQ(checkOf(outcome, "rescan-scsi-bus.sh -r")["verdict"], "ok");
    EXPECT_EQ(checkOf(outcome, "rescan lock")["found"], "not made yet; the first scan makes it");
    EXPECT_EQ(checkOf(outcome, "session")["found"], "open");
    EXPECT_THAT(expect(0, {"doctor"}).out, HasSubstr("ok       tool lsscsi"));
}

TEST_F(HostTest, DoctorNamesAMissingToolAndItsPackage)
{
    std::filesystem::remove(folder.path() + "/bin/lsscsi");
    std::filesystem::remove(folder.path() + "/bin/multipath");
    const Outcome outcome = cli.json({"doctor"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(checkOf(outcome, "tool lsscsi")["verdict"], "failure");
    EXPECT_THAT(checkOf(outcome, "tool lsscsi")["advice"].asString(),
                HasSubstr("install the package lsscsi"));
    EXPECT_EQ(checkOf(outcome, "tool multipath")["verdict"], "warning");
    EXPECT_THAT(expect(1, {"doctor"}).out, HasSubstr("failure  tool lsscsi"));
}

TEST_F(HostTest, DoctorRecognisesTheRescanScriptThatRemovesHealthyDisks)
{
    stub("rescan-scsi-bus.sh", "sg_inq | grep Device_type=");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r")["verdict"], "warning");
    stub("sg_inq", "echo Device_type=0");
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "rescan-scsi-bus.sh -r")["verdict"], "ok");
}

TEST_F(HostTest, DoctorTellsWhoHoldsTheRescanLock)
{
    cli.prepare = [] {
        if (unshare(CLONE_NEWIPC) != 0) {
            _exit(126);
        }
        const int set = semget(rescanKey, 1, IPC_CREAT | 0600);
        semctl(set, 0, SETVAL, 0);
    };
    const Json::Value lock = checkOf(cli.json({"doctor"}), "rescan lock");
    EXPECT_EQ(lock["verdict"], "warning");
    EXPECT_THAT(lock["found"].asString(), HasSubstr("held by process"));
}

TEST_F(HostTest, DoctorLooksAtTheWayToTheArray)
{
    const Outcome unreached = cli.json({"doctor", "--array", "127.0.0.1:1"});
    EXPECT_EQ(unreached.exitCode, 1);
    EXPECT_EQ(checkOf(unreached, "array")["verdict"], "failure");
    const std::string noCa = folder.write("empty.pem", "nothing\n");
    EXPECT_EQ(checkOf(cli.json({"doctor", "--ca-file", noCa}), "CA file")["verdict"], "failure");
    cli.environment["TESSEL_PASSWORD"] = "wrong";
    EXPECT_EQ(checkOf(cli.json({"doctor"}), "session")["verdict"], "failure");
}

} // namespace

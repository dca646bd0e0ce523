#include <ovra/disk/Uses.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

using namespace ovra::disk;

using testing::ElementsAre;
namespace fs = std::filesystem;

constexpr uid_t NOBODY = 65534;

class DeviceInUse : public testing::Test
{
protected:
    DeviceInUse()
    {
        char pattern[] = "/tmp/uses-XXXXXX";
        root = mkdtemp(pattern);
        write("sys/block/sda/dev", "8:0\n");
        write("sys/block/sda/sda1/dev", "8:1\n");
        write("sys/block/sda/sda1/partition", "1\n");
        write("sys/block/sda/queue/nr_requests", "64\n");
        fs::create_directories(root / "sys/block/sda/holders");
        write("sys/block/sdaa/dev", "65:160\n");
        write("proc/self/mountinfo", "22 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                                     "30 22 0:26 / /run rw,nosuid shared:5 - tmpfs tmpfs rw\n");
        write("proc/swaps", "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n");
    }
    ~DeviceInUse() override { fs::remove_all(root); }

    void write(const fs::path& file, const std::string& text)
    {
        fs::create_directories((root / file).parent_path());
        std::ofstream(root / file, std::ios::app) << text;
    }

    std::vector<std::string> uses(const std::string& disk = "sda") { return usesOf(disk, root).found; }
    std::vector<std::string> unknown() { return usesOf("sda", root).unknown; }

    fs::path root;
};

TEST_F(DeviceInUse, IsNamedByNothingWhenNothingUsesIt)
{
    EXPECT_THAT(uses(), ElementsAre());
    EXPECT_THAT(uses("sdq"), ElementsAre());
}

TEST_F(DeviceInUse, IsMounted)
{
    write("proc/self/mountinfo", "40 22 8:0 / /data rw shared:9 - xfs /dev/sda rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda is mounted on /data"));
    EXPECT_THAT(uses("sdaa"), ElementsAre());
}

TEST_F(DeviceInUse, IsMountedByAPartition)
{
    write("proc/self/mountinfo", "40 22 8:1 / /data rw - ext4 /dev/disk/by-label/data rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda1 is mounted on /data"));
}

TEST_F(DeviceInUse, IsMountedByAFileSystemWithANumberOfItsOwn)
{
    write("proc/self/mountinfo", "40 22 0:44 /@ /data rw shared:3 - btrfs /dev/sda1 rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda1 is mounted on /data"));
}

TEST_F(DeviceInUse, HasFileSystemsThatFlushingItDoesNotReach)
{
    write("proc/self/mountinfo", "40 22 0:44 /@ /data rw - btrfs /dev/sda1 rw\n"
                                 "41 22 0:44 /@home /home rw - btrfs /dev/sda1 rw\n"
                                 "42 22 8:1 / /ordinary rw - ext4 /dev/sda1 rw\n");
    write("proc/77/mountinfo", "90 80 0:45 / /inside rw - btrfs /dev/sda rw\n");
    EXPECT_THAT(usesOf("sda", root).unreached, ElementsAre((root / "proc/77/root/inside").string(), "/data"));
    EXPECT_THAT(usesOf("sdaa", root).unreached, ElementsAre());
}

TEST_F(DeviceInUse, BelongsToAFileSystemThatShowsAnotherDevice)
{
    write("proc/self/mountinfo", "40 22 0:44 / /data rw - btrfs /dev/sdaa rw\n"
                                 "41 22 0:45 / /more rw - btrfs /dev/mapper/other rw\n");
    write("sys/fs/btrfs/9f5c/devices/sda1/x", "");
    write("sys/fs/btrfs/9f5c/devices/sdaa/x", "");
    write("sys/fs/btrfs/77aa/devices/dm-3/x", "");
    write("sys/fs/btrfs/features/x", "");
    EXPECT_THAT(uses(), ElementsAre("sda1 is mounted on /data"));
    EXPECT_THAT(usesOf("sda", root).unreached, ElementsAre("/data"));
    write("sys/block/sdaa/device/state", "transport-offline\n");
    EXPECT_THAT(uses(), ElementsAre("sda1 is mounted on /data"));
    EXPECT_THAT(usesOf("sda", root).unreached, ElementsAre()); // a sync would wait for the other one
}

TEST_F(DeviceInUse, IsNotMountedByANumberThatOnlyBeginsAlike)
{
    write("proc/self/mountinfo", "40 22 8:16 / /data rw - ext4 /dev/sdb rw\n41 22 8:1");
    EXPECT_THAT(uses(), ElementsAre());
}

TEST_F(DeviceInUse, IsSwap)
{
    write("proc/swaps", "/dev/sda1                               partition\t1048572\t\t0\t\t-2\n"
                        "/dev/sdaa                               partition\t1048572\t\t0\t\t-3\n");
    EXPECT_THAT(uses(), ElementsAre("sda1 is swapped to"));
    EXPECT_THAT(uses("sdaa"), ElementsAre("sdaa is swapped to"));
}

TEST_F(DeviceInUse, IsHeldByDeviceMapperAndByARaid)
{
    write("sys/block/sda/holders/dm-3", "");
    write("sys/block/sda/sda1/holders/md0", "");
    EXPECT_THAT(uses(), ElementsAre("sda is held by dm-3", "sda1 is held by md0"));
}

TEST_F(DeviceInUse, IsNamedWithEveryUse)
{
    write("proc/self/mountinfo",
          "40 22 8:1 / /a rw - ext4 /dev/sda1 rw\n41 22 8:1 / /b rw - ext4 /dev/sda1 rw\n");
    write("proc/swaps", "/dev/sda partition 1 0 -2\n");
    write("sys/block/sda/holders/dm-0", "");
    EXPECT_THAT(uses(), ElementsAre("sda is swapped to", "sda is held by dm-0", "sda1 is mounted on /a",
                                    "sda1 is mounted on /b"));
    EXPECT_THAT(unknown(), ElementsAre());
}

TEST_F(DeviceInUse, IsNamedThroughAChainOfHolders)
{
    // A volume group on a RAID on a partition; the volume is mounted in a container alone.
    write("sys/block/sda/sda1/holders/md0", "");
    write("sys/block/md0/holders/dm-1", "");
    write("sys/block/dm-1/dm/name", "vg0-data\n");
    write("sys/block/dm-1/dev", "253:1\n");
    write("proc/4711/mountinfo", "40 22 253:1 / /my\\040data rw - ext4 /dev/mapper/vg0-data rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda1 is held by md0", "md0 is held by dm-1 (vg0-data)",
                                    "dm-1 is mounted on /my data"));
}

TEST_F(DeviceInUse, IsNamedOnceThroughTwoHoldersOfOneVolume)
{
    // A mirror of a logical volume has two halves on the disk; the device mapper stacks them again.
    write("sys/block/sda/holders/dm-1", "");
    write("sys/block/sda/holders/dm-2", "");
    write("sys/block/dm-1/holders/dm-3", "");
    write("sys/block/dm-2/holders/dm-3", "");
    write("sys/block/dm-3/dev", "253:3\n");
    write("proc/self/mountinfo", "40 22 253:3 / /data rw - ext4 /dev/dm-3 rw\n");
    EXPECT_THAT(uses(), testing::UnorderedElementsAre("sda is held by dm-1", "sda is held by dm-2",
                                                      "dm-1 is held by dm-3", "dm-3 is mounted on /data"));
}

TEST_F(DeviceInUse, IsMountedByTheNameOfItsMap)
{
    write("sys/block/sda/holders/dm-1", "");
    write("sys/block/dm-1/dm/name", "mpatha\n");
    write("proc/self/mountinfo", "40 22 0:44 / /data rw - btrfs /dev/mapper/mpatha rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda is held by dm-1 (mpatha)", "dm-1 is mounted on /data"));
}

TEST_F(DeviceInUse, LooksAtEachMountNamespaceOnce)
{
    fs::create_directories(root / "proc/1/ns");
    fs::create_symlink("mnt:[1]", root / "proc/1/ns/mnt");
    fs::create_directories(root / "proc/2/ns");
    fs::create_symlink("mnt:[1]", root / "proc/2/ns/mnt");
    write("proc/1/mountinfo", "40 22 8:0 / /one rw - ext4 /dev/sda rw\n");
    write("proc/2/mountinfo", "40 22 8:0 / /two rw - ext4 /dev/sda rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda is mounted on /one"));
    fs::create_symlink("/chroot", root / "proc/2/root"); // which sees other mounts of the namespace
    EXPECT_THAT(uses(), ElementsAre("sda is mounted on /one", "sda is mounted on /two"));
}

TEST_F(DeviceInUse, IsUnknownWhereTheKernelShowsNothing)
{
    const Uses nothing = usesOf("sda", root / "nowhere");
    EXPECT_THAT(nothing.found, ElementsAre());
    EXPECT_THAT(nothing.unknown, testing::SizeIs(2));
    EXPECT_THAT(unknown(), ElementsAre());
    fs::remove(root / "sys/block/sda/dev");
    EXPECT_THAT(unknown(), ElementsAre((root / "sys/block/sda cannot be read").string()));
}

TEST_F(DeviceInUse, IsUnknownWhileATableCannotBeRead)
{
    fs::remove(root / "proc/swaps");
    EXPECT_THAT(unknown(), ElementsAre()) << "a kernel without swap";
    fs::create_directories(root / "proc/swaps");
    EXPECT_THAT(unknown(), ElementsAre((root / "proc/swaps cannot be read: Is a directory").string()));
    fs::remove(root / "proc/self/mountinfo");
    EXPECT_THAT(unknown(), ElementsAre((root / "proc/self/mountinfo cannot be read").string(),
                                       (root / "proc/swaps cannot be read: Is a directory").string()));
}

TEST_F(DeviceInUse, IsUnknownWhereThisProcessMayNotSeeTheMountsOfAnother)
{
    write("proc/77/mountinfo", "40 22 8:0 / /there rw - xfs /dev/sda rw\n");
    EXPECT_THAT(uses(), ElementsAre("sda is mounted on /there"));
    fs::permissions(root, fs::perms(0755));
    fs::permissions(root / "proc/77/mountinfo", fs::perms::none);
    const std::vector<std::string> reasons = {
        (root / "proc/77/mountinfo cannot be read: Permission denied").string()};
    const pid_t child = fork();
    if (child == 0) { // as somebody who may not see all
        const bool isNobody = geteuid() != 0 || setresuid(NOBODY, NOBODY, NOBODY) == 0;
        _exit(isNobody && unknown() == reasons && uses().empty() ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

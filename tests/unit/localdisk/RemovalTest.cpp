#include "KernelDisks.h"

#include "localdisk/Removal.h"

#include <ovra/disk/Files.h>

#include <filesystem>
#include <unistd.h>

using namespace ovra::tessel;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::chrono::seconds LIMIT(600);

class RemovalOfADisk : public LocalDiskTest
{
protected:
    std::vector<ovra::disk::ScsiDisk> disks() { return ovra::disk::scsiDisksOf({"1", "2"}); }
    std::optional<ovra::disk::MultipathMap> map() { return ovra::disk::mapOfWwn(WWN); }
    std::vector<std::string> uses() { return usesOf(disks(), map()); }

    void addMapped()
    {
        add(KernelDisk());
        KernelMap mapped;
        mapped.paths = {"sdc"};
        add(mapped);
    }
    std::string flushMap() const
    {
        return std::string("timeout 5 multipath -f 3") + WWN + " >/dev/null 2>&1";
    }
};

TEST_F(RemovalOfADisk, GoesByItsAddress)
{
    add(KernelDisk());
    EXPECT_EQ(removeDisk(job(), disks().front(), [] { return ""; }), "");
    EXPECT_THAT(disks(), IsEmpty());
}

TEST_F(RemovalOfADisk, DoesNotHappenWhenItIsAnotherByThen)
{
    add(KernelDisk());
    EXPECT_EQ(removeDisk(job(), disks().front(), [] { return "it is another"; }), "it is another");
    EXPECT_EQ(written("/sys/block/sdc/device/delete"), "");
}

TEST_F(RemovalOfADisk, IsToldWhenTheKernelKeepsIt)
{
    add(KernelDisk());
    options.stepSeconds = 1;
    seam.onUsleep = nullptr;
    EXPECT_EQ(removeDisk(job(), disks().front(), [] { return ""; }), "/dev/sdc stays");
}

TEST_F(RemovalOfADisk, HasNoUseInItsOwnMap)
{
    addMapped();
    EXPECT_THAT(uses(), IsEmpty());
}

TEST_F(RemovalOfADisk, HasAUseInALogicalVolumeOnTheMap)
{
    addMapped();
    seam.write("/sys/block/dm-5/dm/uuid", "LVM-abc\n");
    seam.write("/sys/block/dm-5/dm/name", "vg-data\n");
    seam.link("/sys/block/dm-3/holders/dm-5", "../../dm-5");
    EXPECT_THAT(uses(), ElementsAre("dm-3 is held by dm-5 (vg-data)"));
}

TEST_F(RemovalOfADisk, HasAUseInAMountOfTheMapsPartition)
{
    addMapped();
    seam.write("/sys/block/dm-5/dm/uuid", std::string("part1-mpath-3") + WWN + "\n");
    seam.write("/sys/block/dm-5/dev", "253:5\n");
    seam.link("/sys/block/dm-3/holders/dm-5", "../../dm-5");
    EXPECT_THAT(uses(), IsEmpty()) << "the partition alone goes with the map";
    seam.files["/proc/self/mountinfo"] += "40 22 253:5 / /data rw shared:9 - xfs /dev/dm-5 rw\n";
    EXPECT_THAT(uses(), ElementsAre("dm-5 is mounted on /data"));
}

TEST_F(RemovalOfADisk, HasAUseInAMountOfTheMapThatHasNoPathLeft)
{
    addMapped();
    remove("sdc");
    seam.files["/proc/self/mountinfo"] += "40 22 253:3 / /data rw shared:9 - xfs /dev/dm-3 rw\n";
    EXPECT_THAT(uses(), ElementsAre("dm-3 is mounted on /data"));
}

TEST_F(RemovalOfADisk, HasAUseInAProcessThatHasItOpen)
{
    add(KernelDisk());
    seam.write("/proc/4711/comm", "dd\n");
    seam.link("/proc/4711/fd/3", "/dev/sdc");
    seam.write("/proc/4712/comm", "multipathd\n");
    seam.link("/proc/4712/fd/3", "/dev/sdc");
    seam.clock = 0;
    seam.onUsleep = nullptr;
    EXPECT_THAT(uses(), ElementsAre("sdc is open in process 4711 (dd)"));
}

TEST_F(RemovalOfADisk, HasAUseInAProcessThatHasItOpenByAnotherName)
{
    addMapped();
    seam.write("/sys/class/block/sdc/dev", "8:32\n");
    seam.write("/sys/class/block/dm-3/dev", "253:3\n");
    seam.write("/proc/4711/comm", "qemu-system-x86\n");
    seam.link("/proc/4711/fd/3", "/data/volume");
    seam.link("/proc/4711/fd/4", "/dev/sdb");
    seam.link("/proc/4711/fd/5", "socket:[8]");
    seam.devices = {{"/proc/4711/fd/3", {253, 3}}, {"/proc/4711/fd/4", {8, 16}}};
    seam.clock = 0;
    seam.onUsleep = nullptr;
    EXPECT_THAT(uses(), ElementsAre("dm-3 is open in process 4711 (qemu-system-x86)"));
}

TEST_F(RemovalOfADisk, HasUsesThatCannotBeToldWhereTheKernelLacksMemory)
{
    add(KernelDisk());
    seam.write("/proc/4711/comm", "qemu-system-x86\n");
    seam.link("/proc/4711/fd/3", "/data/volume");
    seam.lacking = "/proc/4711/fd/3";
    EXPECT_THROW(uses(), ovra::disk::Unreadable);
}

TEST_F(RemovalOfADisk, WaitsForWhatUdevRunsForAMoment)
{
    add(KernelDisk());
    seam.write("/proc/4711/comm", "blkid\n");
    seam.link("/proc/4711/fd/3", "/dev/sdc");
    onKernel = [&] { std::filesystem::remove_all(seam.root + "/proc/4711"); };
    EXPECT_THAT(uses(), IsEmpty());
}

TEST_F(RemovalOfADisk, WritesBackFromTheTop)
{
    addMapped();
    writeBack(job(), disks(), LIMIT, false);
    EXPECT_THAT(platform.lines("flush: "), ElementsAre("flush: dm-3", "flush: sdc"));
}

TEST_F(RemovalOfADisk, StopsWhereDataCannotBeWrittenBack)
{
    add(KernelDisk());
    seam.disks["sdc"].flushError = EIO;
    EXPECT_THAT(
        failure([&] { writeBack(job(), disks(), LIMIT, false); }),
        HasSubstr("data not yet written to /dev/sdc cannot be written back: Input/output error; nothing was "
                  "removed"));
    EXPECT_EQ(failure([&] { writeBack(job(), disks(), LIMIT, true); }), "") << "forced it is only told";
}

TEST_F(RemovalOfADisk, GoesOnWhereADiskGoesBeforeItIsWrittenBack)
{
    add(KernelDisk());
    seam.disks["sdc"].flushError = ENXIO;
    seam.onFlush = [this](const std::string&) { std::filesystem::remove_all(seam.root + "/sys/block/sdc"); };
    EXPECT_EQ(failure([&] { writeBack(job(), disks(), LIMIT, false); }), "");
    seam.onFlush = nullptr;
}

TEST_F(RemovalOfADisk, NeverOpensADeadOneToWriteBack)
{
    KernelDisk dead;
    dead.state = "offline";
    add(dead);
    writeBack(job(), disks(), LIMIT, false);
    EXPECT_THAT(platform.lines("open: "), IsEmpty());
}

TEST_F(RemovalOfADisk, RemovesTheMapByItsName)
{
    addMapped();
    seam.onSystem = [this](const std::string& command) {
        if (command == flushMap()) {
            std::filesystem::remove_all(seam.root + "/sys/block/dm-3");
        }
    };
    removeMap(job(), *map());
    EXPECT_THAT(commands(), ElementsAre("system: " + flushMap()));
}

TEST_F(RemovalOfADisk, LetsAMapWithoutPathsFailWhatWaitsForOne)
{
    addMapped();
    remove("sdc");
    EXPECT_THAT(failure([&] { removeMap(job(), *map()); }), HasSubstr("stays: multipath -f 3"));
    EXPECT_EQ(commands().front(), std::string("system: timeout 5 dmsetup message 3") + WWN +
                                      " 0 fail_if_no_path >/dev/null 2>&1");
    EXPECT_EQ(commands().size(), 6U) << "five tries, since udev may have it open for a moment";
    options.stepSeconds = 600;
    failure([&] { removeMap(job(), *map()); });
    EXPECT_EQ(commands().size(), 12U) << "and no more where there is time";
    options.stepSeconds = 2;
    failure([&] { removeMap(job(), *map()); });
    EXPECT_LE(commands().size(), 16U) << "nor beyond its time: a pause takes a second";
}

TEST_F(RemovalOfADisk, GivesNoCommandANameThatIsNoWord)
{
    addMapped();
    seam.write("/sys/block/dm-3/dm/name", "a;reboot\n");
    EXPECT_THAT(failure([&] { removeMap(job(), *map()); }), HasSubstr("remove it by hand"));
    EXPECT_THAT(commands(), IsEmpty());
}

TEST_F(RemovalOfADisk, IsDoneWhereItHasGoneMeanwhile)
{
    add(KernelDisk());
    const auto disk = disks().front();
    EXPECT_EQ(removeDisk(job(), disk,
                         [&] {
                             remove("sdc");
                             return "";
                         }),
              "");
    EXPECT_THAT(platform.lines("info: Removing"), IsEmpty());
}

TEST_F(RemovalOfADisk, HasAUseWhereItCannotBeTold)
{
    add(KernelDisk());
    seam.files.erase("/proc/swaps");
    seam.write("/proc/swaps/none", ""); // a directory, which cannot be read
    EXPECT_THAT(
        uses(),
        ElementsAre("whether sdc is in use cannot be told, /proc/swaps cannot be read: Is a directory"));
}

TEST_F(RemovalOfADisk, WritesBackAFileSystemOfSeveralDisksByItsMount)
{
    add(KernelDisk());
    const std::string point = "/nowhere/" + std::to_string(getpid());
    seam.files["/proc/self/mountinfo"] += "40 22 0:45 / " + point + " rw shared:9 - btrfs /dev/sdc rw\n";
    EXPECT_THAT(failure([&] { writeBack(job(), disks(), LIMIT, false); }),
                HasSubstr(point + " cannot be written back: "));
    EXPECT_EQ(failure([&] { writeBack(job(), disks(), LIMIT, true); }), "");
    EXPECT_THAT(platform.lines("warn: data not yet written to "), ElementsAre(HasSubstr(point)));
}

TEST_F(RemovalOfADisk, LeavesAMapToItsUsersWhoseNameNoCommandCanBeGiven)
{
    addMapped();
    seam.write("/sys/block/dm-3/dm/name", "a;reboot\n");
    removeMapLater(job(), *map());
    EXPECT_THAT(commands(), IsEmpty());
}

#include "KernelDisks.h"

#include "localdisk/Whole.h"

#include <ovra/disk/Nodes.h>
#include <ovra/disk/ScsiHosts.h>

#include <filesystem>

using namespace ovra;
using ovra::tessel::whole;
using testing::ElementsAre;
using testing::IsEmpty;

class DisksOfTheKernel : public LocalDiskTest
{
};

TEST_F(DisksOfTheKernel, AreToldWithTheirAddressStateSizeAndIdentity)
{
    KernelDisk read;
    read.name = "sdaa";
    read.address = "2:0:1:255";
    read.isReadOnly = true;
    read.state = "blocked";
    add(read);
    const auto disk = disk::scsiDisk("sdaa");
    ASSERT_TRUE(disk);
    EXPECT_EQ(disk->address, "2:0:1:255");
    EXPECT_EQ(disk->host(), "2");
    EXPECT_EQ(disk->lun(), "255");
    EXPECT_EQ(disk->state, "blocked");
    EXPECT_FALSE(disk->isRunning());
    EXPECT_EQ(disk->bytes, BYTES);
    EXPECT_TRUE(disk->isReadOnly);
    EXPECT_EQ(disk->known.wwn, WWN);
    EXPECT_EQ(disk->known.lunId, "7");
    EXPECT_EQ(disk->map, "");
    EXPECT_THAT(disk::scsiDisksOf({"2"}), testing::SizeIs(1));
    EXPECT_THAT(disk::scsiDisksOf({"1"}), IsEmpty());
}

TEST_F(DisksOfTheKernel, NeedNotSayWhoTheyAre)
{
    KernelDisk silent;
    silent.known = "";
    add(silent);
    EXPECT_EQ(disk::scsiDisk("sdc")->known.wwn, "");
}

TEST_F(DisksOfTheKernel, AreNotTakenForAbsentWhereTheyCannotBeRead)
{
    add(KernelDisk());
    seam.hasNoDescriptors = true;
    EXPECT_THROW(disk::scsiDisksOf({"1"}), disk::Unreadable);
    EXPECT_THROW(disk::scsiHosts(), disk::Unreadable);
    EXPECT_THROW(disk::mapOfWwn(WWN), disk::Unreadable);
    EXPECT_THROW(disk::valueThere("/sys/block/sdc/size"), disk::Unreadable);
    const std::string reason = failure([&] { whole([] { return disk::scsiDisksOf({"1"}); }); });
    seam.hasNoDescriptors = false;
    EXPECT_EQ(
        reason,
        "Exception:the disks of this host cannot be told: /sys/class/scsi_device/ cannot be read: Too many "
        "open files; call again to go on from there! LocalDisk");
    EXPECT_EQ(disk::valueThere("/sys/block/sdz/size"), "") << "what is not there is not unreadable";
    EXPECT_THAT(disk::scsiDisksOf({"1"}), testing::SizeIs(1));
}

TEST_F(DisksOfTheKernel, HaveValuesOfOneLineEach)
{
    seam.write("/sys/value", "running\nmore\n");
    EXPECT_EQ(disk::valueOf("/sys/value"), "running");
    seam.write("/sys/value", "running");
    EXPECT_EQ(disk::valueThere("/sys/value"), "running") << "without an end";
    seam.write("/sys/value", "");
    EXPECT_EQ(disk::valueThere("/sys/value"), "");
    seam.write("/sys/folder/value", "x");
    EXPECT_EQ(disk::valueOf("/sys/folder"), "");
    EXPECT_THROW(disk::valueThere("/sys/folder"), disk::Unreadable) << "is there, and cannot be read";
    EXPECT_THROW(disk::contentThere("/sys/folder"), disk::Unreadable);
}

TEST_F(DisksOfTheKernel, AreNoMapsAndNoPartitions)
{
    add(KernelDisk());
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    EXPECT_FALSE(disk::scsiDisk("dm-3"));
    EXPECT_FALSE(disk::scsiDisk("sdc1"));
    EXPECT_FALSE(disk::scsiDisk("sdq"));
    EXPECT_EQ(disk::scsiDisk("sdc")->map, "dm-3");
}

TEST_F(DisksOfTheKernel, HaveAMapByTheirWwn)
{
    KernelMap map;
    add(map);
    EXPECT_EQ(disk::mapOfWwn(WWN)->name, std::string("3") + WWN);
    EXPECT_FALSE(disk::mapOfWwn(OTHER_WWN));
    EXPECT_FALSE(disk::canAnswer("dm-3")) << "without a path it may keep for ever what it is asked";
}

TEST_F(DisksOfTheKernel, AreAskedWhereWhatTheKernelSaysOfThemCannotBeRead)
{
    add(KernelDisk());
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    for (const char* const file : {"/sys/block/dm-3/slaves/", "/sys/block/dm-3/dm/uuid",
                                   "/sys/block/sdc/device/state", "/sys/block/dm-3/device/state"}) {
        seam.outOfReach = file;
        EXPECT_TRUE(disk::canAnswer("dm-3")) << file << ": else what waits for it would not be written back";
    }
}

TEST_F(DisksOfTheKernel, AreNoPathsAnyMoreWhenTheyAreRemovedAndTheMapHasThemStill)
{
    add(KernelDisk());
    KernelMap map;
    map.paths = {"sdc"};
    add(map);
    EXPECT_TRUE(disk::canAnswer("dm-3"));
    std::filesystem::remove_all(seam.root + "/sys/block/sdc");
    EXPECT_FALSE(disk::canAnswer("dm-3"));
    EXPECT_THAT(disk::multipathMap("dm-3")->paths, IsEmpty());
}

TEST_F(DisksOfTheKernel, AreReachedByTheSessionsOfAnInitiator)
{
    addSession("1");
    addSession("12", "FAILED");
    const auto hosts = disk::scsiHosts();
    ASSERT_EQ(hosts.size(), 2U);
    EXPECT_EQ(hosts[0].number, "1");
    EXPECT_EQ(hosts[0].initiator, "iqn.2020-01.test:host");
    EXPECT_TRUE(hosts[0].isOnline);
    EXPECT_EQ(hosts[1].number, "12");
    EXPECT_EQ(hosts[1].what, "session12 to iqn.2020-01.test:array is FAILED");
    EXPECT_FALSE(hosts[1].isOnline);
}

TEST_F(DisksOfTheKernel, AreReachedByThePortsOfAHost)
{
    seam.write("/sys/class/fc_host/host3/port_name", "0x21000024FF123456\n");
    seam.write("/sys/class/fc_host/host3/port_state", "Online\n");
    const auto hosts = disk::scsiHosts();
    ASSERT_EQ(hosts.size(), 1U);
    EXPECT_TRUE(hosts[0].isFC);
    EXPECT_EQ(hosts[0].number, "3");
    EXPECT_EQ(hosts[0].initiator, disk::plainInitiator(true, "21:00:00:24:ff:12:34:56"));
    EXPECT_TRUE(hosts[0].isOnline);
}

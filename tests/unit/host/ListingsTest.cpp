#include "ScannerTest.h"

#include "host/DeviceRemoval.h"

#include <ovra/disk/ByIdLink.h>
#include <ovra/disk/Files.h>
#include <ovra/disk/Lsscsi.h>
#include <ovra/disk/Multipath.h>

#include <set>

using namespace ovra::disk;

using testing::ElementsAre;

namespace {

std::string identityIn(const std::string& name)
{
    const std::string line = byIdLine(name, "sdc");
    const auto parsed = ByIdLink::parse(line.substr(0, line.size() - 1));
    return parsed ? parsed->identifier : "no link";
}

std::string pathOf(const std::string& target)
{
    const auto parsed = ByIdLink::parse("lrwxrwxrwx 1 root root 9 May 1 10:20 scsi-3600a -> " + target);
    return parsed ? parsed->path : "";
}

std::string addressOf(const std::string& line, const std::string& device = "/dev/sda")
{
    const auto address = addressOfLine(line, device);
    return address ? address->text : "";
}

std::string diskOf(const std::string& line)
{
    return diskOfLine(line).value_or("");
}

std::string firstPath(const std::vector<std::string>& lines, const std::string& node = "dm-3")
{
    return firstPathOf(node, lines).value_or("");
}

} // namespace

TEST(ByIdListing, NamesTheDeviceAndItsIdentity)
{
    EXPECT_EQ(pathOf("../../sdc"), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(pathOf("../../dm-12"), "/dev/disk/by-id/../../dm-12");
    EXPECT_EQ(identityIn("scsi-3600a0b80"), "600a0b80");
    EXPECT_EQ(identityIn("wwn-0x600a0b80"), "600a0b80");
    EXPECT_EQ(identityIn("scsi-SOVRA_TESSEL_7"), "OVRA_TESSEL_7");
}

TEST(ByIdListing, WithNeitherKindOfNameSaysNothingOfTheIdentity)
{
    EXPECT_EQ(identityIn("ata-QEMU_HARDDISK_QM00001"), "");
    EXPECT_EQ(identityIn("dm-name-mpatha"), "");
    EXPECT_EQ(identityIn("scsi-"), "");
    EXPECT_EQ(identityIn("scsi-3"), "");
}

TEST(ByIdListing, LeadsToAnyNodeWithAHarmlessName)
{
    for (const char* const node : {"sr0", "nvme0n1", "vda", "sdc1", "sdC", "kxdisk_3", "a.b:c-d"}) {
        EXPECT_EQ(pathOf("../../" + std::string(node)), "/dev/disk/by-id/../../" + std::string(node));
    }
}

TEST(ByIdListing, LeadsToANameAsLongAsTheKernelsLongest)
{
    const std::string longest = "sd" + std::string(29, 'z');
    EXPECT_EQ(pathOf("../../" + longest), "/dev/disk/by-id/../../" + longest);
    EXPECT_EQ(pathOf("../../" + longest + "z"), "");
}

TEST(ByIdListing, LeadsNowhereElse)
{
    for (const char* const target :
         {"../../sda;reboot", "../../sda -> ../../sdb", "../../", "../../mapper/dm-3", "../../sdc ",
          "../.././sdc", "../../$(reboot)", "../../`reboot`", "../../-v", "../../.hidden", "../../..",
          "../../s\xc3\xa4", "../../sdaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", "/dev/sdc"}) {
        EXPECT_EQ(pathOf(target), "") << target;
    }
}

TEST(LsscsiListing, EndsInTheDiskWithOrWithoutABlank)
{
    EXPECT_EQ(diskOf("[2:0:23:0]   disk    Linux    scsi_debug       0191  /dev/sdaa"), "/dev/sdaa");
    EXPECT_EQ(diskOf("[2:0:0:1]    disk    OVRA     TESSEL           0001  /dev/sdc "), "/dev/sdc");
    EXPECT_EQ(diskOf("[2:0:0:1]    disk    OVRA     TESSEL           0001  /dev/sdaa "), "/dev/sdaa");
}

TEST(LsscsiListing, IsNotCutToANameThatItDoesNotHold)
{
    for (const char* const line :
         {"[2:0:0:1]    disk    OVRA     TESSEL           0001  - ", "[1:0:0:0] cd/dvd QEMU /dev/sr0 ",
          "[N:0:1:1]    disk    NVMe  /dev/nvme0n1 ", "[2:0:0:1] disk /dev/sda;reboot ", "/dev/", "/dev/ ",
          "", "[2:0:0:1] disk /dev/sda  /dev/sg1 ", "[2:0:0:1] disk x/dev/sda", "[2:0:0:1] disk /dev/x/sda",
          "[2:0:0:1] disk $(reboot)/dev/sda`reboot` "}) {
        EXPECT_EQ(diskOf(line), "") << line;
    }
}

TEST(LsscsiListing, AsTheRealToolPrintsItNamesEveryDisk)
{
    const std::vector<std::string> lines = linesOf(contentOf(CORPUS "/lsscsi/lab_guest"));
    ASSERT_EQ(lines.size(), 34u);
    std::set<std::string> disks;
    for (const std::string& line : lines) {
        disks.insert(diskOf(line));
        EXPECT_EQ(addressOf(line, diskOf(line)), line.substr(1, line.find(']') - 1)) << line;
    }
    EXPECT_EQ(disks.size(), lines.size());
    EXPECT_EQ(disks.count("/dev/sdz"), 1u);
    EXPECT_EQ(disks.count("/dev/sdaa"), 1u);
    EXPECT_EQ(disks.count("/dev/sdah"), 1u);
}

TEST(LsscsiListing, GivesTheAddressOfItsOwnDeviceOnly)
{
    const std::string line = "[12:0:3:255]    disk    OVRA     TESSEL           0001  /dev/sda ";
    const auto address = addressOfLine(line, "/dev/sda");
    ASSERT_TRUE(address);
    EXPECT_EQ(address->text, "12:0:3:255");
    EXPECT_EQ(address->host, "12");
    EXPECT_EQ(address->lun, "255");
    EXPECT_EQ(addressOf("[2:0:0:1] disk OVRA TESSEL 0001 /dev/sdaa "), "");
    EXPECT_EQ(addressOf("[2:0:0:1] disk OVRA /dev/sda 0001 /dev/sdb "), "");
}

TEST(LsscsiListing, WithAnAddressOfAnotherFormGivesNone)
{
    for (const char* const address :
         {"", "2:0:0", "2:0:0:1:4", "2:0:0:x", "2:0:0:", ":0:0:1", "2:0:0:01", "2:0:0:00", "N:0:1:1",
          "2:0:0:1;reboot", "../../..", "2:0:0:-1", "2:0:0: 1", "2:0:0:184467440737095516150"}) {
        EXPECT_EQ(addressOf("[" + std::string(address) + "] disk /dev/sda "), "") << address;
    }
    EXPECT_EQ(addressOf(" [2:0:0:1] disk /dev/sda "), "");
    EXPECT_EQ(addressOf("2:0:0:1] disk /dev/sda "), "");
    EXPECT_EQ(addressOf("x2:0:0:1] disk /dev/sda "), "");
    EXPECT_EQ(addressOf("[2:0:0:1 disk /dev/sda "), "");
    EXPECT_EQ(addressOf(""), "");
}

class MultipathListing : public testing::Test
{
protected:
    const std::vector<std::string> maps = {
        "mpathb (3600a0b8000f1c1d2aabbccdd00000008) dm-30 OVRA,TESSEL",
        "size=1.0G features='0' hwhandler='0' wp=rw",
        "`-+- policy='service-time 0' prio=1 status=active",
        "  `- 3:0:0:2 sde 8:64 active ready running",
        "mpatha (3600a0b8000f1c1d2aabbccdd00000007) dm-3 OVRA,TESSEL",
        "size=1.0G features='1 queue_if_no_path' hwhandler='0' wp=rw",
        "|-+- policy='service-time 0' prio=1 status=active",
        "| `- 2:0:0:1 sdc 8:32 active ready running",
        "`-+- policy='service-time 0' prio=1 status=enabled",
        "  `- 3:0:0:1 sdd 8:48 active ready running",
    };
};

TEST_F(MultipathListing, GivesTheFirstPathOfItsOwnNode)
{
    EXPECT_EQ(firstPath(maps), "sdc");
    EXPECT_EQ(firstPath(maps, "dm-30"), "sde");
}

TEST_F(MultipathListing, WithoutTheNodeGivesNone)
{
    EXPECT_EQ(firstPath(maps, "dm-0"), "");
    EXPECT_EQ(firstPath(maps, "dm"), "");
    EXPECT_EQ(firstPath({}), "");
}

TEST_F(MultipathListing, OfAMapWithoutPathsGivesNoneOfAnotherMap)
{
    EXPECT_EQ(firstPath({maps[4], maps[5], maps[0], "  `- 3:0:0:2 sde 8:64 active ready running"}), "");
    EXPECT_EQ(firstPath({maps[4], maps[0], maps[2], maps[3]}), "");
}

TEST_F(MultipathListing, ThatEndsBeforeThePathGivesNone)
{
    for (size_t size = 5; size < 8; ++size) {
        EXPECT_EQ(firstPath({maps.begin(), maps.begin() + static_cast<long>(size)}), "") << size;
    }
}

TEST_F(MultipathListing, WithAnotherWordInThePathsPlaceGivesNone)
{
    for (const char* const path : {"| `- #:#:#:# -   #:# active undef running", "| `- 2:0:0:1 sdc1 8:32", "",
                                   "| `- 2:0:0:1 sdc;reboot 8:32", "| `- 2:0:0:1 nvme0n1 8:32"}) {
        EXPECT_EQ(firstPath({maps[4], maps[5], maps[6], path}), "") << path;
    }
}

class Wwn : public ScannerTest
{
};

TEST_F(Wwn, OfAnArrayIsUsable)
{
    for (const char* const usable : {WWN, "60:0A:0b", "eui.0025385971b0", "a_b-c"}) {
        EXPECT_TRUE(ovra::tessel::checkWwn(usable)) << usable;
    }
    EXPECT_THAT(platform.journal(), ElementsAre());
}

TEST_F(Wwn, ThatIsEmptyOrHoldsAnotherCharacterIsRefusedWithAnError)
{
    const std::vector<std::string> refused = {
        "",     "6 0",  "60;reboot", "$(reboot)", "`reboot`",
        "60|x", "60&x", "60\n",      "60'",       "60\"",
        "60*",  "60/",  "-v",        "6\xc3\xa4", std::string("60\0x", 4)};
    for (const std::string& text : refused) {
        EXPECT_FALSE(ovra::tessel::checkWwn(text)) << text;
    }
    EXPECT_EQ(platform.lines("error: ").size(), refused.size());
}

#include "ScannerTest.h"

#include <filesystem>

using testing::ElementsAre;

class FullSearchOfDisks : public ScannerTest
{
protected:
    std::string find(const std::string& listing, MOType type = MO_LUN)
    {
        seam.prints(BY_ID, {listing});
        return scanner.GetDiskPath(id, wwn, type);
    }

    const std::string name = "scsi-3" + std::string(WWN);
};

TEST_F(FullSearchOfDisks, FollowsTheQuickSearchThatIsNotMadeWithoutKorvex)
{
    seam.addDisk("sdc", WWN);
    EXPECT_EQ(find(byIdLine(name, "sdc")), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(platform.journal().front(), "info: Korvex is not installed");
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 1u);
}

TEST_F(FullSearchOfDisks, IsNotMadeWhenTheQuickSearchFinds)
{
    g_korvexInstalled = true;
    seam.addDisk("sdc", WWN);
    seam.prints(fastListing(), {byIdLine(name, "sdc")});
    EXPECT_EQ(find(byIdLine(name, "sdc")), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(count("info: ---------GetDiskPathForWWN successfully---------!"), 1u);
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 0u);
    EXPECT_THAT(platform.lines("record"), ElementsAre("record GetDiskPathForWWN 0"));
}

TEST_F(FullSearchOfDisks, KnowsLunsAndSnapshotsOnly)
{
    EXPECT_EQ(find("", MO_HOST), "");
    EXPECT_THAT(platform.journal(), ElementsAre("error: moType is wrong!"));
    EXPECT_EQ(find("", MOType(0)), "");
    EXPECT_EQ(count("error: moType is wrong!"), 2u);
}

TEST_F(FullSearchOfDisks, NamesTheObjectInTheLog)
{
    seam.addDisk("sdc", WWN);
    find(byIdLine(name, "sdc"), MO_SNAPSHOT);
    EXPECT_EQ(count("info: Target Snapshot ID [7]"), 1u);
}

TEST_F(FullSearchOfDisks, GathersTheNamesOfADisk)
{
    seam.addDisk("sdc", WWN);
    EXPECT_EQ(find(byIdLine("ata-other", "sdc") + byIdLine("scsi-SOVRA_TESSEL_7", "sdc") +
                   byIdLine("wwn-0x" + std::string(WWN), "sdc")),
              "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(platform.lines("inquiry:").size(), 1u);
}

TEST_F(FullSearchOfDisks, VisitsTheDisksInTheOrderOfTheirPaths)
{
    find(byIdLine("scsi-3a", "sdd") + byIdLine("scsi-3b", "sdaa") + byIdLine("scsi-3c", "dm-0") +
         byIdLine("scsi-3d", "sda"));
    EXPECT_THAT(platform.lines("info: strDiskPath"),
                ElementsAre("info: strDiskPath [/dev/disk/by-id/../../dm-0]",
                            "info: strDiskPath [/dev/disk/by-id/../../sda]",
                            "info: strDiskPath [/dev/disk/by-id/../../sdaa]",
                            "info: strDiskPath [/dev/disk/by-id/../../sdd]"));
}

TEST_F(FullSearchOfDisks, SkipsLinesWithoutATargetOrAnIdentity)
{
    find("total 0\ndrwxr-xr-x 2 root root 60 May  1 10:20 .\n" + byIdLine("ata-QEMU", "sda"));
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Korvex is not installed", std::string("popen: ") + BY_ID,
                            "info: strLine [lrwxrwxrwx 1 root root    9 May  1 10:20 ata-QEMU -> ../../sda]",
                            "pclose", std::string("info: ") + LINE));
}

TEST_F(FullSearchOfDisks, SkipsLinksToDevicesOfUnusualNames)
{
    seam.addDisk("sdc", WWN);
    EXPECT_EQ(find(byIdLine(name, "sd c;") + byIdLine(name, "sdc") + byIdLine(name, "sd c;")),
              "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(platform.lines("warn: a link to a device of an unusual name is not looked at [lrwx").size(),
              2u);
    EXPECT_EQ(platform.lines("info: strDiskPath").size(), 1u);
}

TEST_F(FullSearchOfDisks, SkipsOverlongAndBinaryLinesWhole)
{
    seam.addDisk("sdc", WWN);
    const std::string wide(1000, ' ');
    EXPECT_EQ(find(byIdLine(name + wide, "sdc") + byIdLine(name + '\x01', "sdc") +
                   byIdLine(std::string("\0", 1) + name, "sdc")),
              "");
    EXPECT_THAT(platform.lines("inquiry:"), ElementsAre());
}

TEST_F(FullSearchOfDisks, SkipsALineThatIsCutShort)
{
    seam.addDisk("sda", WWN);
    std::string listing = byIdLine(name, "sdaa");
    listing.resize(listing.size() - 2);
    seam.ends(BY_ID, {9});
    EXPECT_EQ(find(listing), "");
    EXPECT_THAT(platform.lines("inquiry:"), ElementsAre());
}

TEST_F(FullSearchOfDisks, DoesNotTakeTheIdentityOfTheDiskReadBefore)
{
    seam.addDisk("sda", WWN); // under no name of its own, and never removed: LUN 0
    seam.addDisk("sdb", WWN).openError = 6;
    seam.prints("lsscsi", {scsi("2:0:0:0", "sda")});
    EXPECT_EQ(find(byIdLine("scsi-3other", "sda") + byIdLine(name, "sdb")), "");
}

TEST_F(FullSearchOfDisks, NeverMatchesAWwnInUpperCase)
{
    wwn = "600A0B8000F1C1D2AABBCCDD00000007";
    seam.addDisk("sdc", wwn);
    EXPECT_EQ(find(byIdLine("scsi-3" + wwn, "sdc")), "");
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(FullSearchOfDisks, NamesADiskThatCarriesTheWwnAndHasNoName)
{
    seam.addDisk("sdc", WWN);
    seam.write("/sys/block/sdc/device/wwid", "naa." + wwn + "\n");
    EXPECT_EQ(find(""), "");
    EXPECT_THAT(
        platform.lines("warn: "),
        ElementsAre("warn: /dev/sdc carries the WWN of Lun 7, but has no name in /dev/disk/by-id: it is not "
                    "found before udev has named it."));
}

TEST_F(FullSearchOfDisks, AsksNoDiskThatIsNotRunning)
{
    seam.addDisk("sdc", WWN);
    seam.write("/sys/block/sdc/device/state", "offline\n");
    seam.addDisk("dm-3", WWN);
    std::filesystem::remove_all(seam.root + "/sys/block/dm-3/device");
    seam.write("/sys/block/dm-3/slaves/sdc/dev", "8:32\n");
    EXPECT_EQ(find(byIdLine(name, "sdc") + byIdLine(name, "dm-3")), "");
    EXPECT_THAT(platform.lines("open: "), ElementsAre());
}

TEST_F(FullSearchOfDisks, WithKorvexRemovesNoStaleDevice)
{
    g_korvexInstalled = true;
    seam.addDisk("sdc", WWN);
    seam.prints("lsscsi", {scsi("2:0:0:1", "sdc")});
    EXPECT_EQ(find(byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc")), "");
    EXPECT_EQ(count("info: Korvex installed,No need to delete scsi_device"), 1u);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("popen: lsscsi"), 0u);
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 1u);
}

TEST_F(FullSearchOfDisks, WithoutAFindEndsAfterOnePassWithoutAMessage)
{
    seam.addDisk("sdc", OTHER_WWN);
    EXPECT_EQ(find(byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc")), "");
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 1u);
    EXPECT_EQ(platform.journal().back(), std::string("info: ") + LINE);
    EXPECT_THAT(platform.lines("record"), ElementsAre());
}

TEST_F(FullSearchOfDisks, ThatCannotListSaysSo)
{
    seam.cannotStart(BY_ID);
    EXPECT_EQ(find(""), "");
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: Korvex is not installed", std::string("popen: ") + BY_ID,
                            "record! GetDiskPath 1", "error: ls -al /dev/disk/by-id command is not enable!"));
}

TEST_F(FullSearchOfDisks, OfAWwnThatIsNoneRunsNoCommand)
{
    wwn = "a b";
    EXPECT_EQ(find(""), "");
    EXPECT_EQ(platform.journal().size(), 1u);
    EXPECT_EQ(platform.lines("error: The WWN [a b]").size(), 1u);
}

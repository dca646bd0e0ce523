#include "ScannerTest.h"

using testing::ElementsAre;

class FastSearch : public ScannerTest
{
protected:
    FastSearch() { g_korvexInstalled = true; }

    std::string find(const std::string& listing, const std::string& wanted = WWN)
    {
        seam.prints(fastListing(wanted), {listing});
        return scanner.GetDiskPathForWWN(wanted);
    }

    const std::string name = "scsi-3" + std::string(WWN);
};

TEST_F(FastSearch, WithoutTheKorvexProductIsNotMade)
{
    g_korvexInstalled = false;
    EXPECT_EQ(scanner.GetDiskPathForWWN(WWN), "");
    EXPECT_THAT(platform.journal(), ElementsAre("info: Korvex is not installed"));
}

TEST_F(FastSearch, FindsTheDeviceThatCarriesTheWwnInItsNameAndItself)
{
    seam.addDisk("dm-4", WWN);
    EXPECT_EQ(find(byIdLine(name, "dm-4")), "/dev/disk/by-id/../../dm-4");
    EXPECT_THAT(platform.journal(),
                ElementsAre("popen: " + fastListing(), "info: disk info [/dev/disk/by-id/../../dm-4]",
                            "info: strDiskPath [/dev/disk/by-id/../../dm-4]",
                            "open: /dev/disk/by-id/../../dm-4 rw", "inquiry: dm-4 83",
                            "info: strSnapshotID [7]", "info: strTemp [/dm-4]",
                            "system: echo 1 > /sys/block/dm-4/device/rescan", "pclose",
                            "record GetDiskPathForWWN 0"));
}

TEST_F(FastSearch, StopsAtTheFirstFind)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", WWN);
    EXPECT_EQ(find(byIdLine(name, "sdc") + byIdLine(name, "sdd")), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(platform.lines("inquiry:").size(), 1u);
}

TEST_F(FastSearch, PassesOverADeviceWithAnotherIdentity)
{
    seam.addDisk("sdc", OTHER_WWN);
    EXPECT_EQ(find(byIdLine(name, "sdc")), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(platform.journal().back(), "record GetDiskPathForWWN 0");
}

TEST_F(FastSearch, PassesOverANameThatOnlyHoldsTheWwn)
{
    seam.addDisk("sdc", WWN);
    EXPECT_EQ(find(byIdLine("scsi-S" + std::string(WWN) + "_1", "sdc")), "");
}

TEST_F(FastSearch, PassesOverNamesOfNoIdentityAndLinksToNoNode)
{
    EXPECT_EQ(find(byIdLine("ata-" + std::string(WWN), "sdc") + byIdLine(name, "s r0") + "total 0\n\n"), "");
    EXPECT_THAT(journalWithout({"warn: a link to a device of an unusual name is not looked at ["}),
                ElementsAre("popen: " + fastListing(), "info: disk info [/dev/disk/by-id/../../sdc]",
                            "pclose", "record GetDiskPathForWWN 0"));
    EXPECT_EQ(platform.lines("warn: ").size(), 1u);
}

TEST_F(FastSearch, LooksAtNodesThatAreNoScsiDisks)
{
    seam.addDisk("sdkx0", WWN); // no name of a SCSI disk
    EXPECT_EQ(find(byIdLine(name, "sdkx0")), "/dev/disk/by-id/../../sdkx0");
}

TEST_F(FastSearch, NeverMatchesAWwnInUpperCase)
{
    seam.addDisk("sdc", WWN);
    const std::string upper = "600A0B8000F1C1D2AABBCCDD00000007";
    EXPECT_EQ(find(byIdLine("scsi-3" + upper, "sdc"), upper), "");
}

TEST_F(FastSearch, DoesNotTakeTheIdentityOfTheDiskReadBefore)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", WWN).scsiStatus = 2;
    EXPECT_EQ(find(byIdLine("scsi-3other", "sdc") + byIdLine(name, "sdd")), "");
    EXPECT_THAT(platform.lines("info: strSnapshotID"),
                ElementsAre("info: strSnapshotID [7]", "info: strSnapshotID []"));
}

TEST_F(FastSearch, ThatCannotListSaysSo)
{
    seam.cannotStart(fastListing());
    EXPECT_EQ(find(""), "");
    EXPECT_THAT(platform.journal(), ElementsAre("popen: " + fastListing(), "error: fstream is null"));
}

TEST_F(FastSearch, OfAWwnThatIsNoneRunsNoCommand)
{
    for (const char* const wanted : {"", "600;reboot", "$(reboot)"}) {
        EXPECT_EQ(scanner.GetDiskPathForWWN(wanted), "");
    }
    EXPECT_EQ(platform.journal().size(), 3u);
    EXPECT_EQ(platform.lines("error: The WWN [").size(), 3u);
}

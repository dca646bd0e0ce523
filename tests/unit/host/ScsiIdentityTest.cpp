#include "ScannerTest.h"

#include <cerrno>

using testing::ElementsAre;

class ScsiIdentity : public ScannerTest
{
protected:
    int read(const std::string& path)
    {
        std::string device = path;
        return scanner.GetDisk83Page(device, wwnOut, lunIdOut);
    }

    std::string wwnOut = "before";
    std::string lunIdOut = "before";
};

TEST_F(ScsiIdentity, IsTheFirstDesignatorAndTheArraysLunId)
{
    seam.addDisk("sdc", "600A0B8000F1C1D2AABBCCDD0000012C");
    EXPECT_EQ(read("/dev/sdc"), 0);
    EXPECT_EQ(wwnOut, "600a0b8000f1c1d2aabbccdd0000012c");
    EXPECT_EQ(lunIdOut, "300");
    EXPECT_THAT(platform.journal(), ElementsAre("open: /dev/sdc rw", "inquiry: sdc 83"));
}

TEST_F(ScsiIdentity, OfADeviceThatCannotBeWrittenIsReadAllTheSame)
{
    seam.addDisk("sdc", WWN).writeOpenError = EROFS;
    EXPECT_EQ(read("/dev/sdc"), 0);
    EXPECT_EQ(wwnOut, WWN);
    EXPECT_THAT(platform.lines("open:"), ElementsAre("open: /dev/sdc rw", "open: /dev/sdc ro"));
}

TEST_F(ScsiIdentity, StaysAsItWasWhenTheDeviceCannotBeOpened)
{
    seam.addDisk("sdc", WWN).openError = ENXIO;
    EXPECT_EQ(read("/dev/sdc"), -1);
    EXPECT_EQ(wwnOut, "before");
    EXPECT_EQ(lunIdOut, "before");
    EXPECT_THAT(platform.journal(), ElementsAre("open: /dev/sdc rw", "open: /dev/sdc ro"));
}

TEST_F(ScsiIdentity, StaysAsItWasWhenTheInquiryFails)
{
    seam.addDisk("sdc", WWN).inquiryError = EIO;
    seam.addDisk("sdd", WWN).scsiStatus = 2;
    EXPECT_EQ(read("/dev/sdc"), -1);
    EXPECT_EQ(read("/dev/sdd"), -1);
    EXPECT_EQ(wwnOut, "before");
    EXPECT_EQ(lunIdOut, "before");
}

TEST_F(ScsiIdentity, LeavesNoDescriptorOpen)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", WWN).scsiStatus = 2;
    seam.addDisk("sde", std::string(64, 'a'));
    const int before = dup(STDERR_FILENO);
    close(before);
    for (const char* const device : {"/dev/sdc", "/dev/sdd", "/dev/sde"}) {
        read(device);
    }
    const int after = dup(STDERR_FILENO);
    close(after);
    EXPECT_EQ(after, before);
}

TEST_F(ScsiIdentity, OfNoDeviceIsRefused)
{
    EXPECT_EQ(read(""), -1);
    EXPECT_THAT(platform.journal(), ElementsAre("info: strDevice is empty! GetDisk83Page"));
}

TEST_F(ScsiIdentity, WithADesignatorOf32BytesIsRefusedAndWith31Read)
{
    seam.addDisk("sdc", std::string(64, 'a'));
    seam.addDisk("sdd", std::string(62, 'a'));
    EXPECT_EQ(read("/dev/sdc"), -1);
    EXPECT_EQ(wwnOut, "before");
    EXPECT_EQ(read("/dev/sdd"), 0);
    EXPECT_EQ(wwnOut, std::string(62, 'a'));
}

TEST_F(ScsiIdentity, WithAShortDesignatorHasALunIdAllTheSame)
{
    auto page = page83("5000c500a1b2c3d4");
    page[23] = 9;
    seam.disks["sdc"].pages = {page};
    EXPECT_EQ(read("/dev/sdc"), 0);
    EXPECT_EQ(wwnOut, "5000c500a1b2c3d4");
    EXPECT_EQ(lunIdOut, "9");
}

TEST_F(ScsiIdentity, OfAnEmptyDesignatorIsEmpty)
{
    seam.addDisk("sdc", "");
    EXPECT_EQ(read("/dev/sdc"), 0);
    EXPECT_EQ(wwnOut, "");
    EXPECT_EQ(lunIdOut, "0");
}

TEST_F(ScsiIdentity, PageNeedsABuffer)
{
    EXPECT_EQ(scanner.GetDiskPage(0, 0x83, nullptr), -1);
    EXPECT_THAT(platform.journal(), ElementsAre("info: aucBuffer is NULL! GetDiskPage"));
}

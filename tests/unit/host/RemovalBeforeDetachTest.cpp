#include "ScannerTest.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

using testing::ElementsAre;

namespace {

std::string removal(const std::string& disk)
{
    return "echo 1 > /sys/block/" + disk + "/device/delete";
}

} // namespace

class RemovalOfDisks : public ScannerTest
{
protected:
    /** The listing of each pass. */
    void list(std::deque<std::string> listings) { seam.prints("lsscsi", std::move(listings)); }

    const std::string canary = scsi("0:0:0:0", "sda");
};

TEST_F(RemovalOfDisks, RemovesBothPathsInTheFirstPassAndEndsAfterTheSecond)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", WWN);
    list({canary + scsi("3:0:0:1", "sdd") + scsi("2:0:0:1", "sdc"), canary});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(
        platform.journal(),
        ElementsAre("info: enter scanLunBeforeDetach successfully!", "info: enter getLun successfully!",
                    "GET /lun/7", "record getLun 0", "info: leave getLun successfully!", "popen: lsscsi",
                    "pclose", "open: /dev/sda rw", "open: /dev/sda ro", "open: /dev/sdc rw",
                    "inquiry: sdc 83", "open: /dev/sdc ro", "flush: sdc", "fsync: sdc", "open: /dev/sdc rw",
                    "inquiry: sdc 83", "info: delete disk cmd[" + removal("sdc") + "]",
                    "system: " + removal("sdc"), "open: /dev/sdd rw", "inquiry: sdd 83", "open: /dev/sdd ro",
                    "flush: sdd", "fsync: sdd", "open: /dev/sdd rw", "inquiry: sdd 83",
                    "info: delete disk cmd[" + removal("sdd") + "]", "system: " + removal("sdd"),
                    "popen: lsscsi", "pclose", "open: /dev/sda rw", "open: /dev/sda ro",
                    "info: leave scanLunBeforeDetach successfully!", "record scanLunBeforeDetach 0"));
}

TEST_F(RemovalOfDisks, RemovesASnapshotsDiskAndNotTheOneBehindIt)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", OTHER_WWN);
    const std::string other = scsi("2:0:0:2", "sdd");
    list({scsi("2:0:0:1", "sdc") + other, other});
    scanner.scanSnapshotBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
    EXPECT_EQ(platform.journal().front(), "info: enter scanSnapshotBeforeDetach successfully!");
    EXPECT_EQ(count("GET /SNAPSHOT/7"), 1u);
    EXPECT_EQ(count("info: leave scanSnapshotBeforeDetach successfully!"), 1u);
    EXPECT_EQ(platform.journal().back(), "record scanSnapshotBeforeDetach 0");
}

TEST_F(RemovalOfDisks, EndsAfterFivePassesThatRemovedSomething)
{
    seam.addDisk("sdc", WWN);
    list({scsi("2:0:0:1", "sdc")});
    scanner.scanLunBeforeDetach(id);
    EXPECT_EQ(commands().size(), 5u);
    EXPECT_EQ(count("popen: lsscsi"), 5u);
    EXPECT_EQ(platform.journal().back(), "record scanLunBeforeDetach 0");
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: A device of LUN 7 was still there in the last of 5 "
                            "rounds: look whether it is gone."));
}

TEST_F(RemovalOfDisks, WithKorvexRemovesAndListsNothing)
{
    g_korvexInstalled = true;
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(journalWithout({"GET", "record getLun", "info: enter", "info: leave getLun"}),
                ElementsAre("info: Korvex installed,No need to delete device",
                            "info: leave scanLunBeforeDetach successfully!", "record scanLunBeforeDetach 0"));
}

TEST_F(RemovalOfDisks, TakesNeitherTheLockNorTheScanState)
{
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(platform.lines("sem"), ElementsAre());
    EXPECT_EQ(GetScanState(), KX_RESCAN_NEVER);
}

TEST_F(RemovalOfDisks, NeedsBothTheWwnAndTheLunId)
{
    seam.addDisk("sdc", WWN); // LUN 7
    seam.addDisk("sdd", "600a0b8000f1c1d2aabbccde00000007");
    list({scsi("2:0:0:1", "sdd")});
    scanner.scanLunBeforeDetach(id);

    list({scsi("2:0:0:1", "sdc")});
    platform.reply(Reply::object(R"({"ID":"8","WWN":")" + wwn + R"("})"));
    std::string otherId = "8";
    scanner.scanLunBeforeDetach(otherId);
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(RemovalOfDisks, NeverRemovesADiskThatCannotBeRead)
{
    seam.addDisk("sdb", WWN).openError = 6;
    seam.addDisk("sdc", WWN).scsiStatus = 2;
    seam.addDisk("sdd", WWN).inquiryError = EIO;
    list({scsi("2:0:0:1", "sdb") + scsi("2:0:0:2", "sdc") + scsi("2:0:0:3", "sdd")});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(RemovalOfDisks, NeverTakesTheIdentityOfTheDiskReadBefore)
{
    seam.addDisk("sdc", WWN);
    seam.addDisk("sdd", WWN).openError = 6;
    list({scsi("2:0:0:1", "sdc") + scsi("2:0:0:2", "sdd"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
}

TEST_F(RemovalOfDisks, NeverMatchesAnEmptyWwnWithAnUnreadableDisk)
{
    wwn = "";
    seam.addDisk("sdb", WWN).openError = 6;
    seam.addDisk("sdc", "");
    list({scsi("2:0:0:1", "sdb") + scsi("2:0:0:2", "sdc")});
    scanner.scanLunBeforeDetach(id);
    std::string zero = "0"; // what an empty page says
    platform.reply(Reply::object(R"({"ID":"0","WWN":""})"));
    scanner.scanLunBeforeDetach(zero);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_THAT(platform.lines("popen:"), ElementsAre());
    EXPECT_EQ(platform.lines("error: The WWN []").size(), 2u);
}

TEST_F(RemovalOfDisks, SparesADiskThatHasBecomeAnotherMeanwhile)
{
    seam.addDisk("sdc", WWN).pages = {page83(WWN), page83(OTHER_WWN)};
    list({scsi("2:0:0:1", "sdc")});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("popen: lsscsi"), 1u); // nothing was removed: no further pass
    EXPECT_EQ(platform.lines("error: /dev/sdc has changed or does not answer any more").size(), 1u);
}

TEST_F(RemovalOfDisks, AsksForTheIdentityLast)
{
    seam.addDisk("sdc", WWN);
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    const auto journal = platform.journal();
    const auto command = std::find(journal.begin(), journal.end(), "system: " + removal("sdc"));
    ASSERT_NE(command, journal.end());
    EXPECT_EQ(command[-1], "info: delete disk cmd[" + removal("sdc") + "]");
    EXPECT_EQ(command[-2], "inquiry: sdc 83");
}

TEST_F(RemovalOfDisks, RemovesADiskWhoseFlushFailedAndSaysSo)
{
    seam.addDisk("sdc", WWN).flushError = 28;
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
    EXPECT_THAT(
        platform.lines("warn: "),
        ElementsAre("warn: /dev/sdc: data not yet written could not be written back before its removal: "
                    "No space left on device"));
}

TEST_F(RemovalOfDisks, RemovesADiskInUseAndNamesEveryUse)
{
    seam.files["/proc/self/mountinfo"] = "40 22 8:32 / /data rw - ext4 /dev/sdc rw\n";
    seam.files["/proc/swaps"] = "/dev/sdc partition 1048572 0 -2\n/dev/sdd partition 1048572 0 -2\n";
    seam.addDisk("sdc", WWN);
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: /dev/sdc is removed while in use: sdc is mounted on /data",
                            "warn: /dev/sdc is removed while in use: sdc is swapped to"));
}

TEST_F(RemovalOfDisks, SkipsNamesThatAreNoDisksOrNotWhole)
{
    for (const char* const name : {"sda", "sdc", "sdaa", "sr0"}) {
        seam.addDisk(name, WWN);
    }
    seam.ends("lsscsi", {SIGKILL}); // before it has written its last line
    list({"[2:0:0:2]    disk    OVRA     TESSEL           0001  /dev/sdc;reboot \n"
          "[2:0:0:3]    disk    OVRA     TESSEL           0001  /dev/sr0 \n"
          "[2:0:0:4]    disk    OVRA     TESSEL           0001  - \n"
          "[2:0:0:5]    disk    OVRA     " +
          std::string(1100, 'x') + "/dev/sdc \n[2:0:0:6] disk \x07 /dev/sdc \n[2:0:0:7] disk /dev/sda"});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_THAT(platform.lines("open:"), ElementsAre());
}

TEST_F(RemovalOfDisks, RemovesADiskBeyondSdz)
{
    seam.addDisk("sdaa", WWN);
    list({canary + "[2:0:23:0]   disk    Linux    scsi_debug       0191  /dev/sdaa\n", canary});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdaa")));
}

TEST_F(RemovalOfDisks, SaysThatItFoundNone)
{
    seam.addDisk("sdc", OTHER_WWN);
    list({scsi("2:0:0:1", "sdc")});
    scanner.scanLunBeforeDetach(id);
    scanner.scanSnapshotBeforeDetach(id);
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: No device of LUN 7 was found on this host: none was removed.",
                            "warn: No device of snapshot 7 was found on this host: none was removed."));
}

TEST_F(RemovalOfDisks, DoesNotAskADiskThatIsAwayAndSaysThatItStays)
{
    seam.addDisk("sdc", WWN);
    seam.write("/sys/block/sdc/device/state", "transport-offline\n");
    seam.write("/sys/block/sdc/device/wwid", "naa." + wwn + "\n");
    list({scsi("2:0:0:1", "sdc")});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_THAT(platform.lines("open: "), ElementsAre());
    EXPECT_EQ(platform.lines("warn: sdc has its WWN, but does not answer").size(), 1u);
}

TEST_F(RemovalOfDisks, WritesBackWhatStandsOnTheDiskFirstAndNothingToWhatIsDead)
{
    for (const char* const name : {"sdc", "sdc1", "dm-0", "dm-1"}) {
        seam.addDisk(name, WWN);
    }
    seam.write("/sys/block/sdc/sdc1/partition", "1\n");
    seam.write("/sys/block/sdc/sdc1/holders/dm-0/x", "");
    seam.write("/sys/block/dm-0/holders/dm-1/x", "");
    std::filesystem::remove_all(seam.root + "/sys/block/dm-0/device");
    std::filesystem::remove_all(seam.root + "/sys/block/dm-1/device");
    seam.write("/sys/block/dm-1/slaves/sdx/x", "");
    seam.write("/sys/block/sdx/device/state", "offline\n");
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(platform.lines("flush: "), ElementsAre("flush: dm-0", "flush: sdc1", "flush: sdc"));
    EXPECT_EQ(count("warn: /dev/dm-1 is not running: data not yet written to it is lost"), 1u);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
}

TEST_F(RemovalOfDisks, WritesNothingBackToAVolumeThatADeadDiskBelongsTo)
{
    for (const char* const name : {"sdc", "dm-0", "dm-1"}) {
        seam.addDisk(name, WWN);
    }
    for (const char* const name : {"dm-0", "dm-1"}) {
        const std::string folder = std::string("/sys/block/") + name;
        std::filesystem::remove_all(seam.root + folder + "/device");
        seam.write("/sys/block/sdc/holders/" + std::string(name) + "/x", "");
        seam.write(folder + "/slaves/sdc/x", "");
        seam.write(folder + "/slaves/sdx1/x", "");
    }
    seam.write("/sys/block/sdx/sdx1/partition", "1\n");
    seam.link("/sys/class/block/sdx1", "../../block/sdx/sdx1");
    seam.write("/sys/block/dm-0/dm/uuid", "mpath-3600a0b8000f1c1d2\n");
    seam.write("/sys/block/dm-1/dm/uuid", "LVM-wNtKvQ\n");
    seam.write("/sys/block/sdx/device/state", "blocked\n");
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(platform.lines("flush: "), ElementsAre("flush: dm-0", "flush: sdc"));
    EXPECT_EQ(count("warn: /dev/dm-1 is not running: data not yet written to it is lost"), 1u);
}

TEST_F(RemovalOfDisks, WritesBackAFileSystemThatTheDiskDoesNotLeadTo)
{
    seam.write("/data/file", "");
    seam.files["/proc/self/mountinfo"] = "40 22 0:44 / " + seam.root +
                                         "/data rw - btrfs /dev/sdc rw\n"
                                         "41 22 0:45 / /nonexistent rw - btrfs /dev/sdc rw\n";
    seam.addDisk("sdc", WWN);
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(journalWithout({"info", "warn: /dev", "record", "GET", "popen", "pclose", "inquiry"}),
                ElementsAre("open: /dev/sdc rw", "syncfs: " + seam.root + "/data",
                            "warn: /nonexistent: data not yet written could not be written back before its "
                            "removal: No such file or directory",
                            "open: /dev/sdc ro", "flush: sdc", "fsync: sdc", "open: /dev/sdc rw",
                            "system: " + removal("sdc")));
}

TEST_F(RemovalOfDisks, WhoseListingCannotBeRunSaysSo)
{
    seam.exits("lsscsi", {127});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: [lsscsi] cannot be run: it is not known which devices there are.",
                            "warn: No device of LUN 7 was found on this host: none was removed."));
}

TEST_F(RemovalOfDisks, ThatMayBeInUseSaysSo)
{
    seam.addDisk("sdc", WWN);
    seam.files.erase("/proc/self/mountinfo");
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(platform.lines("warn: "),
                ElementsAre("warn: /dev/sdc is removed, whether it is in use cannot be told: "
                            "/proc/self/mountinfo cannot be read"));
}

TEST_F(RemovalOfDisks, OfWhichItIsNotKnownWhatStandsOnThemSaysSo)
{
    seam.addDisk("sdc", WWN);
    seam.outOfReach = "/sys/block/sdc/holders";
    list({scsi("2:0:0:1", "sdc"), ""});
    scanner.scanLunBeforeDetach(id);
    EXPECT_THAT(
        platform.lines("warn: "),
        ElementsAre("warn: /dev/sdc is removed, whether it is in use cannot be told: "
                    "/sys/block/sdc/holders cannot be read: Too many open files",
                    "warn: what stands on /dev/sdc: data not yet written could not be written back before "
                    "its removal: /sys/block/sdc/holders cannot be read: Too many open files"));
    EXPECT_EQ(count("flush: sdc"), 1u) << "the disk itself is";
}

TEST_F(RemovalOfDisks, EndsWhenTheDevicesCannotBeListed)
{
    seam.cannotStart("lsscsi");
    scanner.scanLunBeforeDetach(id);
    const auto journal = platform.journal();
    EXPECT_EQ(journal[journal.size() - 3], "popen: lsscsi");
    EXPECT_EQ(journal[journal.size() - 2], "record! scanLunBeforeDetach 1");
    EXPECT_EQ(journal.back(), "error: lsscsi command is not enable!");
}

TEST_F(RemovalOfDisks, EndsWhenTheDevicesCannotBeListedAgain)
{
    seam.addDisk("sdc", WWN);
    list({scsi("2:0:0:1", "sdc")});
    seam.cannotStart("lsscsi", 1);
    scanner.scanSnapshotBeforeDetach(id);
    EXPECT_THAT(commands(), ElementsAre(removal("sdc")));
    EXPECT_EQ(count("record! scanSnapshotBeforeDetach 1"), 1u);
    EXPECT_EQ(count("info: leave scanSnapshotBeforeDetach successfully!"), 0u);
}

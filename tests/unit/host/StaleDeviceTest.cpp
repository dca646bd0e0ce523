#include "ScannerTest.h"

#include <csignal>
#include <filesystem>

using testing::ElementsAre;

/** sdc carries the wanted LUN by now, but udev knows it under the names of the disk that was there before. */
class StaleDeviceNames : public ScannerTest
{
protected:
    StaleDeviceNames()
    {
        seam.addDisk("sdc", WWN);
        seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc")});
        seam.prints("lsscsi", {scsi("2:0:0:0", "sda") + scsi("2:0:0:1", "sdc")});
    }

    /** The kernel has found the disk again at its address, and udev has named it. */
    void nameRenewed(const std::string& name)
    {
        seam.write("/sys/class/scsi_device/2:0:0:1/device/block/" + name + "/dev", "8:32\n");
        seam.link("/dev/disk/by-id/scsi-3" + wwn, "../../" + name);
    }

    std::string find() { return scanner.GetDiskPath(id, wwn, MO_LUN); }

    const std::string remove = "echo 1 > /sys/class/scsi_device/2:0:0:1/device/delete";
    const std::string scan = "echo \"- - -\" > /sys/class/scsi_host/host2/scan";
};

TEST_F(StaleDeviceNames, AreRenewedAndTheDiskFoundInTheSecondPass)
{
    nameRenewed("sdc");
    seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc"), byIdLine("scsi-3" + wwn, "sdc")});
    EXPECT_EQ(find(), "/dev/disk/by-id/../../sdc");
    EXPECT_THAT(
        journalWithout({"info: strLine"}),
        ElementsAre("info: Korvex is not installed", std::string("popen: ") + BY_ID, "pclose",
                    std::string("info: ") + LINE, "info: strDiskPath [/dev/disk/by-id/../../sdc]",
                    "open: /dev/disk/by-id/../../sdc rw", "inquiry: sdc 83", "info: Target Lun ID [7]",
                    std::string("info: ") + LINE, "popen: lsscsi", "open: /dev/disk/by-id/../../sdc ro",
                    "flush: sdc", "fsync: sdc", "open: /dev/disk/by-id/../../sdc rw", "inquiry: sdc 83",
                    "info: strShellCmd NO1 [" + remove + "]", "system: " + remove,
                    "info: strShellCmd NO2 [" + scan + "]", "system: " + scan, std::string("info: ") + LINE,
                    "sleep: 1", "pclose", std::string("popen: ") + BY_ID, "pclose",
                    std::string("info: ") + LINE, "info: strDiskPath [/dev/disk/by-id/../../sdc]",
                    "open: /dev/disk/by-id/../../sdc rw", "inquiry: sdc 83", "info: Target Lun ID [7]",
                    "record GetDiskPath 0", "system: echo 1 > /sys/block/sdc/device/rescan",
                    "info: ---------GetDiskPath successfully---------!"));
}

TEST_F(StaleDeviceNames, OnceRenewedAreLookedForAmongTheDisksThatAreThereByThen)
{
    nameRenewed("sdc");
    seam.addDisk("sdb", OTHER_WWN);
    const std::string gone = byIdLine("scsi-3" + std::string(OTHER_WWN), "sdb");
    seam.prints(BY_ID,
                {gone + byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc"), byIdLine("scsi-3" + wwn, "sdc")});
    EXPECT_EQ(find(), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(count("open: /dev/disk/by-id/../../sdb rw"), 1u);
}

TEST_F(StaleDeviceNames, ThatStayAreRenewedTwiceNeverThrice)
{
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 2u);
}

TEST_F(StaleDeviceNames, OfLunZeroStayButAreLookedForAgain)
{
    seam.prints("lsscsi", {scsi("2:0:0:0", "sdc")});
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 2u);
}

TEST_F(StaleDeviceNames, OfSdaAreNotThoseOfSdaa)
{
    seam.addDisk("sda", WWN);
    seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sda")});
    seam.prints("lsscsi", {scsi("4:0:0:9", "sdaa") + scsi("2:0:0:1", "sda")});
    find();
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
}

TEST_F(StaleDeviceNames, AreNotRenewedByALineThatHoldsACommandOrIsCut)
{
    const std::string cut = scsi("5:0:0:3", "sdcc");
    seam.ends("lsscsi", {SIGKILL}); // before it has written its last line
    seam.prints("lsscsi", {scsi("2:0:0:1;reboot", "sdc") + scsi("$(reboot):0:0:1", "sdc") +
                           scsi("2:0:0:1", "sdc;reboot") + "[2:0:0:1]" + std::string(1100, ' ') +
                           "/dev/sdc \n" + cut.substr(0, cut.size() - 3)});
    find();
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(StaleDeviceNames, AreNotRenewedWhenTheDiskHasBecomeAnotherMeanwhile)
{
    seam.disks["sdc"].pages = {page83(WWN), page83(OTHER_WWN)};
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(platform.lines("error: /dev/sdc has changed or does not answer any more").size(), 1u);
}

TEST_F(StaleDeviceNames, AreNotRenewedWhenTheDiskNoLongerAnswers)
{
    seam.disks["sdc"].pages = {page83(WWN), {}};
    find();
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(StaleDeviceNames, AreNotRenewedAtAnAddressThatIsAnotherDisksByNow)
{
    const std::string disks = "/sys/class/scsi_device/2:0:0:1/device/block";
    seam.write(disks + "/sdd/dev", "8:48\n");
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(platform.lines("error: /dev/sdc is no longer the device at 2:0:0:1").size(), 2u);

    seam.write(disks + "/sdc/dev", "8:32\n");
    find();
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
}

TEST_F(StaleDeviceNames, OfADiskInUseAreRenewedAndTheUseNamed)
{
    seam.files["/proc/self/mountinfo"] = "40 22 8:32 / /data rw - ext4 /dev/sdc rw\n";
    find();
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
    EXPECT_EQ(count("warn: /dev/sdc is removed while in use: sdc is mounted on /data"), 2u);
}

TEST_F(StaleDeviceNames, AreWaitedForUntilUdevHasNamedTheRenewedDisk)
{
    // Before, the name leads to the disk that now is another one: two LUNs have exchanged their numbers.
    seam.write("/sys/class/scsi_device/2:0:0:1/device/block/sdc/dev", "8:32\n");
    seam.link("/dev/disk/by-id/scsi-3" + wwn, "../../sdb");
    seam.prints(BY_ID, {byIdLine("scsi-3" + wwn, "sdb") + byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc"),
                        byIdLine("scsi-3" + wwn, "sdc")});
    seam.addDisk("sdb", OTHER_WWN);
    seam.onUsleep = [&] {
        if (platform.lines("usleep:").size() == 3) {
            std::filesystem::remove(seam.root + "/dev/disk/by-id/scsi-3" + wwn);
            seam.link("/dev/disk/by-id/scsi-3" + wwn, "../../sdc");
        }
    };
    EXPECT_EQ(find(), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(platform.lines("usleep:").size(), 3u);
    EXPECT_THAT(platform.lines("warn:"), ElementsAre());
}

TEST_F(StaleDeviceNames, AreWaitedForNoLongerThanTenSeconds)
{
    find();
    EXPECT_EQ(count("usleep: 100000"), 2 * 100u);
    EXPECT_EQ(platform.lines("warn: The device at 2:0:0:1 has got no name of its own yet").size(), 2u);
}

TEST_F(StaleDeviceNames, OfARenewedDiskMayBeThoseOfItsMultipathMap)
{
    seam.write("/sys/class/scsi_device/2:0:0:1/device/block/sdc/dev", "8:32\n");
    seam.write("/sys/block/dm-3/slaves/sdc/dev", "8:32\n");
    seam.link("/dev/disk/by-id/wwn-0x" + wwn, "../../dm-3");
    find();
    EXPECT_THAT(platform.lines("usleep:"), ElementsAre());
}

TEST_F(StaleDeviceNames, OfADeviceThatIsNoScsiDiskStay)
{
    seam.addDisk("sdkx0", WWN); // no name of a SCSI disk
    seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sdkx0")});
    seam.prints("lsscsi", {scsi("2:0:0:1", "sdkx0")});
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(platform.lines("warn: /dev/sdkx0 stands under old names, and is no SCSI disk").size(), 1u);
}

TEST_F(StaleDeviceNames, EndTheSearchWhenTheDevicesCannotBeListed)
{
    seam.cannotStart("lsscsi");
    EXPECT_EQ(find(), "");
    EXPECT_EQ(count(std::string("popen: ") + BY_ID), 1u);
    const auto journal = platform.journal();
    EXPECT_EQ(journal[journal.size() - 2], "record! GetDiskPath 1");
    EXPECT_EQ(journal.back(), "error: lsscsi is not enable!");
}

TEST_F(StaleDeviceNames, AreRenewedAfterAFlushThatFailed)
{
    seam.disks["sdc"].flushError = 5;
    find();
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
    EXPECT_THAT(platform.lines("warn: "),
                testing::Contains(
                    "warn: /dev/sdc: data not yet written could not be written back before its removal: "
                    "Input/output error"));
}

class StaleMapperNames : public StaleDeviceNames
{
protected:
    StaleMapperNames()
    {
        seam.disks.clear();
        for (const char* const name : {"dm-3", "sdc", "sdd"}) {
            seam.addDisk(name, WWN);
        }
        seam.addDisk("sde", OTHER_WWN);
        seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "dm-3")});
        seam.prints("lsscsi", {scsi("2:0:0:1", "sdc") + scsi("3:0:0:1", "sdd") + scsi("3:0:0:2", "sde")});
        seam.prints(MULTIPATH, {map("dm-30", "sde", "sde") + map("dm-3", "sdc", "sdd")});
    }

    static std::string map(const std::string& node, const std::string& first, const std::string& second)
    {
        return "mpath (3600) " + node + " OVRA,TESSEL\nsize=1.0G features='0' hwhandler='0' wp=rw\n" +
               "|-+- policy='service-time 0' prio=1 status=active\n| `- 2:0:0:1 " + first +
               " 8:32 active ready running\n`-+- policy='service-time 0' prio=1 status=enabled\n  `- "
               "3:0:0:1 " +
               second + " 8:48 active ready running\n";
    }
};

TEST_F(StaleMapperNames, RenewTheFirstPathDevice)
{
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
    EXPECT_THAT(platform.lines("flush: "), ElementsAre("flush: sdc", "flush: sdc"));
}

TEST_F(StaleMapperNames, RemoveNoPathThatCarriesAnotherLun)
{
    seam.addDisk("sdc", OTHER_WWN);
    find();
    EXPECT_THAT(commands(), ElementsAre());
}

TEST_F(StaleMapperNames, ThatMultipathDoesNotKnowRemoveNothing)
{
    seam.prints(MULTIPATH, {map("dm-30", "sde", "sde")});
    EXPECT_EQ(find(), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("popen: lsscsi"), 0u);
    EXPECT_EQ(platform.lines("error: multipath -ll shows no path device of dm-3").size(), 1u);
}

TEST_F(StaleMapperNames, GoOnWithTheNextDiskWhenMultipathCannotBeStarted)
{
    seam.cannotStart(MULTIPATH);
    seam.addDisk("sdd", WWN);
    seam.prints(BY_ID,
                {byIdLine("scsi-3" + std::string(OTHER_WWN), "dm-3") + byIdLine("scsi-3" + wwn, "sdd")});
    EXPECT_EQ(find(), "/dev/disk/by-id/../../sdd");
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! GetDiskPath 1", "record GetDiskPath 0"));
    EXPECT_EQ(count("error: multipath -ll is not enable!"), 1u);
    EXPECT_EQ(count("popen: lsscsi"), 0u);
}

TEST_F(StaleMapperNames, OfADiskWhoseNameHoldsDmAreNotThoseOfAMapperNode)
{
    seam.addDisk("sddm", WWN);
    seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sddm")});
    seam.prints("lsscsi", {scsi("2:0:0:1", "sddm")});
    find();
    EXPECT_EQ(count(std::string("popen: ") + MULTIPATH), 0u);
    EXPECT_THAT(commands(), ElementsAre(remove, scan, remove, scan));
}

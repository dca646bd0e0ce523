#include "ScannerTest.h"

#include <tessel/Exception.h>

#include <csignal>
#include <filesystem>
#include <fstream>

using testing::ElementsAre;

class ScanLun : public ScannerTest
{
protected:
    /** sdc carries the LUN, under its own names. */
    void connect()
    {
        seam.addDisk("sdc", WWN);
        seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(WWN), "sdc")});
    }
};

TEST_F(ScanLun, RescansTwiceByTheScriptAndFindsTheDevice)
{
    connect();
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "/dev/disk/by-id/../../sdc");
    EXPECT_THAT(
        platform.journal(),
        ElementsAre("info: enter scanLunAfterAttach successfully!", "info: enter getLun successfully!",
                    "GET /lun/7", "record getLun 0", "info: leave getLun successfully!",
                    "semget: 1235 1 0600 create", "semop: 41 -1 undo", std::string("system: ") + WHICH,
                    std::string("system: ") + SCRIPT, std::string("system: ") + SCRIPT,
                    "debug: =============rescan-scsi-bus.sh start============",
                    "info: ============Rescan -r success=============\n", std::string("system: ") + TMP_BLOCK,
                    "info: Korvex is not installed", std::string("popen: ") + BY_ID,
                    "info: strLine [lrwxrwxrwx 1 root root    9 May  1 10:20 "
                    "scsi-3600a0b8000f1c1d2aabbccdd00000007 -> "
                    "../../sdc]",
                    "pclose", std::string("info: ") + LINE, "info: strDiskPath [/dev/disk/by-id/../../sdc]",
                    "open: /dev/disk/by-id/../../sdc rw", "inquiry: sdc 83", "info: Target Lun ID [7]",
                    "record GetDiskPath 0", "system: echo 1 > /sys/block/sdc/device/rescan",
                    "info: ---------GetDiskPath successfully---------!", "semget: 1235 1 0600 create",
                    "semctl: 41 SETVAL 1", "info: leave scanLunAfterAttach successfully!",
                    "record scanLunAfterAttach 0"));
}

TEST_F(ScanLun, RescansByTheKorvexProductWhenItsCommandIsThere)
{
    seam.exits(WHICH, {0});
    seam.exits(KORVEX, {3});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(WHICH, KORVEX, TMP_BLOCK));
    EXPECT_EQ(count("info: ============kxRescan returnCode = 3============="), 1u);
    EXPECT_EQ(count("info: ============Rescan -r success=============\n"), 1u);
    EXPECT_FALSE(g_korvexInstalled); // looked for, not remembered
}

TEST_F(ScanLun, WarnsWhereItIsNotKnownHowTheKorvexProductEnded)
{
    seam.exits(WHICH, {0});
    seam.ends(KORVEX, {-1});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_EQ(count("warn: How kxRescan ended is not known: another part of this program has waited for it."),
              1u);
}

TEST_F(ScanLun, LooksForTheKorvexProductEveryTime)
{
    g_korvexInstalled = true;
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, SCRIPT, TMP_BLOCK));
}

TEST_F(ScanLun, WithoutAFindWarnsAndSucceeds)
{
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(platform.lines("warn:"), ElementsAre("warn: lun path is NULL."));
    EXPECT_THAT(platform.journal(), testing::Contains("record scanLunAfterAttach 0"));
    EXPECT_EQ(platform.journal().back(), "record scanLunAfterAttach 0");
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(ScanLun, WaitsUntilTheTemporaryDevicesAreGone)
{
    seam.exits(TMP_BLOCK, {0, 0, 0, 1});
    scanner.scanLunAfterAttach(id);
    EXPECT_EQ(count(std::string("system: ") + TMP_BLOCK), 4u);
    EXPECT_EQ(count("sleep: 1"), 3u);
}

TEST_F(ScanLun, WaitsAtMost1500SecondsAndGoesOn)
{
    connect();
    seam.exits(TMP_BLOCK, {0});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(count(std::string("system: ") + TMP_BLOCK), 1501u);
    EXPECT_EQ(count("sleep: 1"), 1500u);
}

TEST_F(ScanLun, TouchesNeitherTheScanStateNorItsWaiters)
{
    scanner.scanLunAfterAttach(id);
    EXPECT_EQ(GetScanState(), KX_RESCAN_NEVER);
}

TEST_F(ScanLun, WithoutAnIdIsRefused)
{
    std::string none;
    EXPECT_EQ(scanner.scanLunAfterAttach(none), "");
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: enter scanLunAfterAttach successfully!",
                            "error: lunID is empty! scanLunAfterAttach", "record! scanLunAfterAttach 1"));
}

TEST_F(ScanLun, WithoutADeviceManagerIsRefused)
{
    CDiskScannerHandlerImpl alone;
    EXPECT_EQ(alone.scanLunAfterAttach(id), "");
    EXPECT_THAT(platform.journal(), ElementsAre("info: enter scanLunAfterAttach successfully!",
                                                "error: deviceManage is NULL! scanLunAfterAttach",
                                                "record! scanLunAfterAttach 1"));
}

class ManagerWithoutHandlers : public CDeviceManagerImpl
{
public:
    CHandler* getHandler(HANDLERTYPE type) override
    {
        asked.push_back(type);
        return nullptr;
    }
    std::vector<int> asked;
};

TEST_F(ScanLun, WithoutALunHandlerIsRefused)
{
    ManagerWithoutHandlers empty;
    CDiskScannerHandlerImpl other(&empty);
    EXPECT_EQ(other.scanLunAfterAttach(id), "");
    EXPECT_THAT(platform.journal(), ElementsAre("info: enter scanLunAfterAttach successfully!",
                                                "error: get lunHandler fail! scanLunAfterAttach",
                                                "record! scanLunAfterAttach 1"));
    EXPECT_THAT(empty.asked, ElementsAre(LUN_HANDLER));
}

TEST_F(ScanLun, WithoutTheLockDoesNotRescan)
{
    seam.semgetFails = true;
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("error: Get Lock Failed"), 1u);
    EXPECT_THAT(platform.lines("info: leave scan"), ElementsAre());
    EXPECT_EQ(platform.journal().back(), "record! scanLunAfterAttach 1");
}

TEST_F(ScanLun, PassesTheArraysErrorOnWithOneRecordOfItsCode)
{
    platform.reply(Reply::error(1077936859));
    EXPECT_THROW(scanner.scanLunAfterAttach(id), OvraAPIExceptionWithErrCode);
    EXPECT_THAT(platform.lines("record"),
                ElementsAre("record! getLun 1077936859", "record! scanLunAfterAttach 1077936859"));
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("semop: 41 -1 undo"), 0u);
}

TEST_F(ScanLun, PassesATransportFailureOnWithOneRecordOfItsCode)
{
    platform.reply(Reply::noAnswer(7));
    EXPECT_THROW(scanner.scanLunAfterAttach(id), OvraAPIException);
    EXPECT_THAT(platform.lines("record"), ElementsAre("record! getLun 7", "record! scanLunAfterAttach 7"));
}

TEST_F(ScanLun, EndedFromTheKeyboardRunsNoFurtherStepAndFreesTheLock)
{
    connect();
    for (const char* const command : {WHICH, SCRIPT, TMP_BLOCK, BY_ID}) {
        platform.reset();
        platform.reply(Reply::object(R"({"ID":"7","WWN":")" + wwn + R"("})"));
        seam.ends(command, {SIGINT});
        EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
        seam.ends(command, {command == std::string(BY_ID) ? 0 : 1 << 8});
        EXPECT_EQ(lastScanSignal(), SIGINT);
        EXPECT_EQ(seam.semaphoreValue, 1);
        EXPECT_EQ(platform.lines("error: A command of the host was ended by signal 2").size(), 1u) << command;
        EXPECT_EQ(platform.journal().back(), "record! scanLunAfterAttach 1");
        EXPECT_THAT(platform.lines("warn:"), ElementsAre());
        std::vector<std::string> run;
        for (const std::string& line :
             journalWithout({"info", "warn", "error", "sem", "GET", "record", "pclose"})) {
            run.push_back(line.substr(line.find(": ") + 2));
        }
        EXPECT_EQ(run.back(), command) << "nothing was run after it";
    }
    platform.reply(Reply::object(R"({"ID":"7","WWN":")" + wwn + R"("})"));
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "/dev/disk/by-id/../../sdc");
    EXPECT_EQ(lastScanSignal(), 0);
}

TEST_F(ScanLun, OfWhichNoCommandTellsHowItEndedLooksForKorvexInPath)
{
    char pattern[] = "/tmp/korvex-XXXXXX";
    const std::filesystem::path folder = mkdtemp(pattern);
    std::ofstream(folder / "kxRescan") << "#!/bin/sh\n";
    std::filesystem::permissions(folder / "kxRescan", std::filesystem::perms(0755));
    for (const int status : {-1, 127 << 8}) {
        seam.ends(WHICH, {status});
        setenv("PATH", folder.c_str(), 1);
        platform.reset();
        scanner.scanLunAfterAttach(id);
        EXPECT_THAT(commands(), ElementsAre(WHICH, KORVEX, TMP_BLOCK));
        setenv("PATH", "/nonexistent", 1);
        platform.reset();
        scanner.scanLunAfterAttach(id);
        EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, SCRIPT, TMP_BLOCK));
    }
    std::filesystem::remove_all(folder);
}

TEST_F(ScanLun, ThatCannotTellWhetherKorvexIsInstalledRemovesNothing)
{
    const std::string loop = "/proc/self/exe/" + std::string(5000, 'x'); // no such name can be looked at
    setenv("PATH", loop.c_str(), 1);
    seam.ends(WHICH, {-1});
    seam.addDisk("sdc", WWN);
    seam.prints(BY_ID, {byIdLine("scsi-3" + std::string(OTHER_WWN), "sdc")}); // stale
    seam.prints("lsscsi", {scsi("2:0:0:1", "sdc")});
    scanner.scanLunAfterAttach(id);
    const std::string only = "rescan-scsi-bus.sh >/dev/null 2>&1";
    EXPECT_THAT(commands(), ElementsAre(WHICH, only, only, TMP_BLOCK));
    scanner.scanLunBeforeDetach(id);
    scanner.scanSnapshotBeforeDetach(id);
    EXPECT_EQ(commands().size(), 4u) << "no removal";
    EXPECT_EQ(count("info: Korvex installed,No need to delete device"), 0u);
    EXPECT_GE(platform.lines("error: It cannot be told whether Korvex is installed").size(), 3u);

    setenv("PATH", "/nonexistent", 1); // now it can
    scanner.scanLunBeforeDetach(id);
    EXPECT_EQ(commands()[4], "echo 1 > /sys/block/sdc/device/delete");
}

class ScannerThatThrows : public CDiskScannerHandlerImpl
{
public:
    using CDiskScannerHandlerImpl::CDiskScannerHandlerImpl;
    std::string GetDiskPath(std::string&, std::string&, MOType) override
    {
        throw OvraAPIException("on purpose");
    }
};

TEST_F(ScanLun, FreesTheLockWhenTheSearchThrows)
{
    ScannerThatThrows thrower(&manager);
    EXPECT_THROW(thrower.scanLunAfterAttach(id), OvraAPIException);
    EXPECT_EQ(seam.semaphoreValue, 1);
    EXPECT_EQ(count("semctl: 41 SETVAL 1"), 1u);
}

TEST_F(ScanLun, WithAWwnThatHoldsACommandFindsAndRemovesNothing)
{
    wwn = "7;touch /tmp/owned;";
    seam.addDisk("sdc", "");
    seam.prints(BY_ID, {byIdLine("scsi-3", "sdc")});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(platform.journal(), testing::Each(Not(testing::MatchesRegex("(system|popen): .*touch.*"))));
    EXPECT_THAT(platform.lines("popen: "), ElementsAre());
    EXPECT_EQ(platform.lines("error: The WWN [7;touch /tmp/owned;]").size(), 1u);
}

TEST_F(ScanLun, WithoutAWwnNeverMatchesADeviceThatCannotBeRead)
{
    wwn = "";
    seam.disks["sdc"] = SeamDisk();
    seam.addDisk("sdd", "");
    seam.prints(BY_ID, {byIdLine("scsi-3", "sdc") + byIdLine("scsi-3", "sdd")});
    EXPECT_EQ(scanner.scanLunAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, SCRIPT, TMP_BLOCK));
    EXPECT_EQ(platform.lines("error: The WWN []").size(), 1u);
}

#include "ScanSnapshotTest.h"

#include <tessel/Exception.h>

#include <csignal>
#include <thread>

using testing::ElementsAre;

TEST_F(ScanSnapshot, ScansByItselfWhenNoScanEverRan)
{
    g_korvexInstalled = true;
    connect();
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), path);
    EXPECT_THAT(
        journalWithout({"open:", "inquiry:", "record getSnapshot", "GET"}),
        ElementsAre("info: enter scanSnapshotAfterAttach successfully!",
                    "info: enter getSnapshot successfully!", "info: leave getSnapshot successfully!",
                    "info: enter ScanSnapshotPreare successfully!", "info: need scan snapshot!",
                    "semget: 1235 1 0600 create", "semop: 41 -1 undo", std::string("system: ") + KORVEX,
                    "info: ============kxRescan returnCode = 0=============",
                    "info: ============Rescan -r success=============\n", std::string("system: ") + TMP_BLOCK,
                    "popen: " + fastListing(), "info: disk info [" + path + "]",
                    "info: strDiskPath [" + path + "]", "info: strSnapshotID [7]", "info: strTemp [/sdc]",
                    "system: echo 1 > /sys/block/sdc/device/rescan", "pclose", "record GetDiskPathForWWN 0",
                    "info: ---------GetDiskPathForWWN successfully---------!", "semget: 1235 1 0600 create",
                    "semctl: 41 SETVAL 1", "info: leave scanSnapshotAfterAttach successfully!",
                    "record scanSnapshotAfterAttach 0"));
    EXPECT_EQ(GetScanState(), KX_RESCAN_ENDED);
}

TEST_F(ScanSnapshot, WithoutKorvexScansByTheScriptWithoutWaiting)
{
    g_scanState = KX_RESCAN_RUNNING; // nobody would end it
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(WHICH, SCRIPT, SCRIPT, TMP_BLOCK));
    EXPECT_EQ(count("info: not install Korvex, exit wait scan"), 1u);
    EXPECT_EQ(count("debug: =============rescan-scsi-bus.sh start============"), 1u);
    EXPECT_THAT(platform.lines("warn:"), ElementsAre("warn: snapshot path is NULL."));
    EXPECT_EQ(platform.journal().back(), "record scanSnapshotAfterAttach 0");
    EXPECT_EQ(GetScanState(), KX_RESCAN_ENDED);
}

TEST_F(ScanSnapshot, RemembersTheKorvexProductThatItFinds)
{
    seam.exits(WHICH, {0});
    scanner.scanSnapshotAfterAttach(id);
    EXPECT_TRUE(g_korvexInstalled);
    EXPECT_THAT(commands(), ElementsAre(WHICH, KORVEX, TMP_BLOCK));
}

TEST_F(ScanSnapshot, TakesTheDeviceThatAnEarlierScanBrought)
{
    g_korvexInstalled = true;
    g_scanState = KX_RESCAN_ENDED;
    connect();
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), path);
    EXPECT_THAT(commands(), ElementsAre("echo 1 > /sys/block/sdc/device/rescan"));
    EXPECT_THAT(platform.lines("sem"), ElementsAre());
    EXPECT_THAT(
        journalWithout({"open:", "inquiry:", "popen:", "pclose", "system:", "info: str", "info: disk"}),
        testing::Contains("info: Target Snapshot ID [7]"));
    EXPECT_THAT(platform.lines("record"), ElementsAre("record getSnapshot 0", "record GetDiskPathForWWN 0",
                                                      "record scanSnapshotAfterAttach 0"));
    EXPECT_EQ(platform.journal().back(), "record scanSnapshotAfterAttach 0");
}

TEST_F(ScanSnapshot, ScansWhenAnEarlierScanDidNotBringTheDevice)
{
    g_korvexInstalled = true;
    g_scanState = KX_RESCAN_ENDED;
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(KORVEX, TMP_BLOCK));
    EXPECT_EQ(count("info: wait the scaning ..."), 1u);
    EXPECT_EQ(count("info: running the kxRescan end"), 1u);
    EXPECT_EQ(count("info: no find lun"), 1u);
    EXPECT_EQ(count("info: exit ScanSnapshotPreare successfully!"), 1u);
}

TEST_F(ScanSnapshot, CanBeAskedForWhatAnEarlierScanBroughtAlone)
{
    g_korvexInstalled = true;
    g_scanState = KX_RESCAN_ENDED;
    connect();
    EXPECT_EQ(scanner.ScanSnapshotPreare(id, WWN), path);
    EXPECT_THAT(commands(), ElementsAre("echo 1 > /sys/block/sdc/device/rescan"));
    EXPECT_EQ(count("info: enter scanSnapshotAfterAttach successfully!"), 0u);
}

TEST_F(ScanSnapshot, IsRunningWhileItRescansAndEndedWhenItSearches)
{
    g_korvexInstalled = true;
    std::vector<std::string> states;
    seam.onSystem = [&](const std::string& command) {
        states.push_back(command + " " + std::to_string(GetScanState()));
    };
    seam.onPopen = seam.onSystem;
    scanner.scanSnapshotAfterAttach(id);
    EXPECT_THAT(states, ElementsAre(KORVEX + std::string(" 1"), TMP_BLOCK + std::string(" 1"),
                                    fastListing() + " 2", BY_ID + std::string(" 2")));
}

TEST_F(ScanSnapshot, HoldsItsWaitersBackWhileItSearches)
{
    g_korvexInstalled = true;
    std::vector<std::string> held;
    seam.onSystem = [&](const std::string& command) {
        std::thread([&] {
            if (g_scanLunMutex.try_lock()) {
                g_scanLunMutex.unlock();
            } else {
                held.push_back(command);
            }
        }).join();
    };
    seam.onPopen = seam.onSystem;
    scanner.scanSnapshotAfterAttach(id);
    EXPECT_THAT(held, ElementsAre(fastListing(), BY_ID));
    EXPECT_TRUE(g_scanLunMutex.try_lock());
    g_scanLunMutex.unlock();
}

TEST_F(ScanSnapshot, WithoutAnIdIsRefused)
{
    std::string none;
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(none), "");
    EXPECT_THAT(platform.journal(), ElementsAre("info: enter scanSnapshotAfterAttach successfully!",
                                                "error: snapshotID is empty! scanSnapshotAfterAttach",
                                                "record! scanSnapshotAfterAttach 1"));
}

TEST_F(ScanSnapshot, WithoutADeviceManagerIsRefused)
{
    CDiskScannerHandlerImpl alone;
    EXPECT_EQ(alone.scanSnapshotAfterAttach(id), "");
    EXPECT_EQ(count("error: deviceManage is NULL! scanSnapshotAfterAttach"), 1u);
}

class ManagerWithoutSnapshots : public CDeviceManagerImpl
{
public:
    CHandler* getHandler(HANDLERTYPE type) override
    {
        return type == SNAPSHOT_HANDLER ? nullptr : CDeviceManagerImpl::getHandler(type);
    }
};

TEST_F(ScanSnapshot, WithoutASnapshotHandlerIsRefused)
{
    ManagerWithoutSnapshots other;
    CDiskScannerHandlerImpl otherScanner(&other);
    EXPECT_EQ(otherScanner.scanSnapshotAfterAttach(id), "");
    EXPECT_THAT(platform.journal(), ElementsAre("info: enter scanSnapshotAfterAttach successfully!",
                                                "error: get snapshotHandler fail! scanSnapshotAfterAttach",
                                                "record! scanSnapshotAfterAttach 1"));
}

TEST_F(ScanSnapshot, EndedFromTheKeyboardEndsTheScanForItsWaitersToo)
{
    g_korvexInstalled = true;
    seam.ends(KORVEX, {130 << 8});
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre(KORVEX));
    EXPECT_EQ(lastScanSignal(), SIGINT);
    EXPECT_EQ(GetScanState(), KX_RESCAN_ENDED);
    EXPECT_EQ(seam.semaphoreValue, 1);
}

TEST_F(ScanSnapshot, WithoutTheLockDoesNotRescanAndStartsNoScan)
{
    g_korvexInstalled = true;
    seam.semgetFails = true;
    EXPECT_EQ(scanner.scanSnapshotAfterAttach(id), "");
    EXPECT_THAT(commands(), ElementsAre());
    EXPECT_EQ(count("error: Get Lock Failed"), 1u);
    EXPECT_EQ(platform.journal().back(), "record! scanSnapshotAfterAttach 1");
    EXPECT_EQ(GetScanState(), KX_RESCAN_NEVER);
}

TEST_F(ScanSnapshot, PassesTheArraysErrorOnWithOneRecordOfItsCode)
{
    platform.reply(Reply::error(1077937880));
    EXPECT_THROW(scanner.scanSnapshotAfterAttach(id), OvraAPIExceptionWithErrCode);
    EXPECT_THAT(platform.lines("record"),
                ElementsAre("record! getSnapshot 1077937880", "record! scanSnapshotAfterAttach 1077937880"));
}

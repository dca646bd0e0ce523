#include "host/DiskScannerHandlerImpl.h"

#include "host/FullSearch.h"
#include "host/HostRescan.h"
#include "host/NameSearch.h"
#include "host/ScanOperation.h"

using namespace ovra::tessel;
using ovra::disk::Presence;

int g_scannerInitialised = 0;

namespace {

/** Whether the Korvex product is there; once found it is not looked for again. */
Presence rememberKorvex()
{
    const Presence found = g_korvexInstalled ? Presence::PRESENT : lookForKorvex();
    if (found == Presence::PRESENT) {
        g_korvexInstalled = true;
    }
    return found;
}

/** Waits for another thread's scan and looks whether it has brought the snapshot's device. */
std::string awaitScan(const std::string& snapshotId, const std::string& wwn)
{
    COMMLOG(OS_LOG_INFO, "enter ScanSnapshotPreare successfully!");
    const Presence korvex = rememberKorvex();
    if (korvex == Presence::ABSENT) {
        COMMLOG(OS_LOG_INFO, "not install Korvex, exit wait scan");
    }
    if (korvex != Presence::PRESENT) {
        return std::string();
    }
    if (GetScanState() == KX_RESCAN_NEVER) {
        COMMLOG(OS_LOG_INFO, "need scan snapshot!");
        return std::string();
    }
    COMMLOG(OS_LOG_INFO, "wait the scaning ...");
    waitForScanEnd();
    COMMLOG(OS_LOG_INFO, "running the kxRescan end");

    std::string path = findByName(wwn);
    if (!path.empty()) {
        COMMLOG(OS_LOG_INFO, "Target Snapshot ID [%s]", snapshotId.c_str());
    } else {
        COMMLOG(OS_LOG_INFO, "no find lun");
        COMMLOG(OS_LOG_INFO, "exit ScanSnapshotPreare successfully!"); // docs/oddities.md#exit-preare
    }
    return path;
}

} // namespace

CDiskScannerHandlerImpl::CDiskScannerHandlerImpl(CDeviceManagerImpl* deviceManager) : HandlerOf(deviceManager)
{
    static std::mutex setUp;
    const std::lock_guard<std::mutex> lock(setUp);
    if (g_scannerInitialised == 1 || m_rescanLock.InitLock() != 0) {
        return;
    }
    g_scannerInitialised = untilInterrupted([] {
        if (rememberKorvex() == Presence::PRESENT) {
            COMMLOG(OS_LOG_INFO, "has installed Korvex");
        }
        return 1;
    });
}

std::string CDiskScannerHandlerImpl::scanLunAfterAttach(std::string& lunID)
{
    const auto steps = [&](LunMO& lun) -> std::optional<std::string> {
        const HeldRescanLock lock(m_rescanLock);
        if (!lock) {
            return std::nullopt;
        }
        rescanHost(lookForKorvex()); // docs/oddities.md#korvex-each-time
        return GetDiskPath(lun.ID, lun.WWN, MO_LUN);
    };
    return scan<LunKind>("scanLunAfterAttach", m_pDeviceManager, lunID, steps);
}

std::string CDiskScannerHandlerImpl::scanSnapshotAfterAttach(std::string& snapshotID)
{
    const Untold untilWaitersGoOn;
    std::unique_lock<std::mutex> waiters; // kept back until this scan has written its last line
    const auto steps = [&](SnapshotMO& snapshot) -> std::optional<std::string> {
        std::string path = awaitScan(snapshot.ID, snapshot.WWN);
        if (!path.empty()) {
            return path;
        }
        const HeldRescanLock lock(m_rescanLock);
        if (!lock) {
            return std::nullopt;
        }
        RunningScan scan;
        rescanHost(knownKorvex());
        waiters = scan.end();
        return GetDiskPath(snapshot.ID, snapshot.WWN, MO_SNAPSHOT);
    };
    return scan<SnapshotKind>("scanSnapshotAfterAttach", m_pDeviceManager, snapshotID, steps);
}

void CDiskScannerHandlerImpl::scanLunBeforeDetach(std::string& lunID)
{
    removeDevicesOf<LunKind>("scanLunBeforeDetach", m_pDeviceManager, lunID);
}

void CDiskScannerHandlerImpl::scanSnapshotBeforeDetach(std::string& snapshotID)
{
    removeDevicesOf<SnapshotKind>("scanSnapshotBeforeDetach", m_pDeviceManager, snapshotID);
}

std::string CDiskScannerHandlerImpl::GetDiskPath(std::string& objectID, std::string& wwn, MOType type)
{
    return untilInterrupted([&] { return findDisk(objectID, wwn, type); });
}

std::string CDiskScannerHandlerImpl::GetDiskPathForWWN(const std::string& wwn)
{
    return untilInterrupted([&] { return findByName(wwn); });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::string CDiskScannerHandlerImpl::ScanSnapshotPreare(std::string snapshotID, const std::string& wwn)
{
    return untilInterrupted([&] { return awaitScan(snapshotID, wwn); });
}

#include "host/DiskScannerHandlerImpl.h"

#include "host/DeviceRemoval.h"
#include "host/FullSearch.h"
#include "host/HostRescan.h"
#include "host/Interruption.h"
#include "host/NameSearch.h"
#include "host/ScannedObject.h"

using namespace ovra::tessel;
using ovra::disk::Presence;

int g_scannerInitialised = 0;

namespace {

/** Reports that the commands of a scan or a removal were ended from the keyboard; false when they were not.
 */
bool endIfInterrupted(Operation& op)
{
    if (lastScanSignal() == 0) {
        return false;
    }
    COMMLOG(OS_LOG_ERROR, "A command of the host was ended by signal %d: the steps after it are not run.",
            lastScanSignal());
    op.close(RESULT_BAD_ARGUMENT);
    return true;
}

/**
 * What every scan is around its own steps.
 * @param steps give the path that they find, empty for none; nothing when there was no scan.
 */
template <class Object, class Steps>
std::string scan(const char* name, CDeviceManagerImpl* deviceManager, const std::string& id, Steps steps)
{
    setLastScanSignal(0);
    return Operation::run(Frame(name).recordedLast(), deviceManager, [&](Operation& op) {
        auto object = readScanned<Object>(op, deviceManager, id);
        if (!object) {
            return std::string();
        }
        const auto path = untilInterrupted([&]() -> std::optional<std::string> { return steps(*object); });
        if (endIfInterrupted(op)) {
            return std::string();
        }
        if (!path) {
            COMMLOG(OS_LOG_ERROR, "Get Lock Failed");
            op.close(RESULT_BAD_ARGUMENT);
        } else if (path->empty()) {
            COMMLOG(OS_LOG_WARN, "%s", Object::NOT_FOUND);
        }
        return path.value_or(std::string());
    });
}

template <class Object>
void removeDevicesOf(const char* name, CDeviceManagerImpl* deviceManager, const std::string& id)
{
    setLastScanSignal(0);
    Operation::run(Frame(name).recordedLast(), deviceManager, [&](Operation& op) {
        const auto object = readScanned<Object>(op, deviceManager, id);
        if (!object) {
            return;
        }
        if (g_korvexInstalled) {
            COMMLOG(OS_LOG_INFO, "Korvex installed,No need to delete device");
            return;
        }
        if (!checkWwn(object->WWN) || !mayRemoveDevices()) {
            return;
        }
        const bool listed = untilInterrupted([&] { return removeDevices(Object::NOUN, {object->WWN, id}); });
        if (!endIfInterrupted(op) && !listed) {
            op.close(RESULT_BAD_ARGUMENT);
            COMMLOG(OS_LOG_ERROR, "lsscsi command is not enable!");
        }
    });
}

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
        COMMLOG(OS_LOG_INFO, "exit ScanSnapshotPreare successfully!");
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
        rescanHost(lookForKorvex());
        return GetDiskPath(lun.ID, lun.WWN, MO_LUN);
    };
    return scan<LunKind>("scanLunAfterAttach", m_pDeviceManager, lunID, steps);
}

std::string CDiskScannerHandlerImpl::scanSnapshotAfterAttach(std::string& snapshotID)
{
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

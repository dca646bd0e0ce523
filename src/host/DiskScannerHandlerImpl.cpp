#include "host/DiskScannerHandlerImpl.h"

#include "host/HostRescan.h"
#include "host/ScannedObject.h"

using namespace ovra::tessel;

int g_scannerInitialised = 0;
std::atomic<bool> g_korvexInstalled{false};

namespace {

/** Says that there will be no scan; an empty path. */
std::string withoutLock(Operation& op)
{
    COMMLOG(OS_LOG_ERROR, "Get Lock Failed");
    op.end(RESULT_BAD_ARGUMENT);
    return std::string();
}

template <class Object>
void warnIfNotFound(const std::string& path)
{
    if (path.empty()) {
        COMMLOG(OS_LOG_WARN, "%s", Object::NOT_FOUND);
    }
}

} // namespace

CDiskScannerHandlerImpl::CDiskScannerHandlerImpl(CDeviceManagerImpl* deviceManager) : HandlerOf(deviceManager)
{
    static std::mutex setUp;
    const std::lock_guard<std::mutex> lock(setUp);
    if (g_scannerInitialised == 1 || m_rescanLock.InitLock() != 0) {
        return;
    }
    if (isKorvexFound()) {
        g_korvexInstalled = true;
        COMMLOG(OS_LOG_INFO, "has installed Korvex");
    }
    g_scannerInitialised = 1;
}

std::string CDiskScannerHandlerImpl::scanLunAfterAttach(std::string& lunID)
{
    const Frame frame = Frame("scanLunAfterAttach").recordedLast();
    return Operation::run(frame, m_pDeviceManager, [&](Operation& op) {
        auto lun = readScanned<ScannedLun>(op, m_pDeviceManager, lunID);
        if (!lun) {
            return std::string();
        }
        std::string path;
        {
            const HeldRescanLock lock(m_rescanLock);
            if (!lock) {
                return withoutLock(op);
            }
            rescanHost(isKorvexFound());
            path = GetDiskPath(lun->ID, lun->WWN, MO_LUN);
        }
        warnIfNotFound<ScannedLun>(path);
        return path;
    });
}

std::string CDiskScannerHandlerImpl::scanSnapshotAfterAttach(std::string& snapshotID)
{
    const Frame frame = Frame("scanSnapshotAfterAttach").recordedLast();
    std::unique_lock<std::mutex> waiters; // kept back until this scan has written its last line
    return Operation::run(frame, m_pDeviceManager, [&](Operation& op) {
        auto snapshot = readScanned<ScannedSnapshot>(op, m_pDeviceManager, snapshotID);
        if (!snapshot) {
            return std::string();
        }
        std::string path = ScanSnapshotPreare(snapshot->ID, snapshot->WWN);
        if (!path.empty()) {
            return path;
        }
        {
            const HeldRescanLock lock(m_rescanLock);
            if (!lock) {
                return withoutLock(op);
            }
            RunningScan scan;
            rescanHost(g_korvexInstalled);
            waiters = scan.end();
            path = GetDiskPath(snapshot->ID, snapshot->WWN, MO_SNAPSHOT);
        }
        warnIfNotFound<ScannedSnapshot>(path);
        return path;
    });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
std::string CDiskScannerHandlerImpl::ScanSnapshotPreare(std::string snapshotID, const std::string& wwn)
{
    COMMLOG(OS_LOG_INFO, "enter ScanSnapshotPreare successfully!");
    if (!g_korvexInstalled) {
        if (!isKorvexFound()) {
            COMMLOG(OS_LOG_INFO, "not install Korvex, exit wait scan");
            return std::string();
        }
        g_korvexInstalled = true;
    }
    if (GetScanState() == KX_RESCAN_NEVER) {
        COMMLOG(OS_LOG_INFO, "need scan snapshot!");
        return std::string();
    }
    COMMLOG(OS_LOG_INFO, "wait the scaning ...");
    waitForScanEnd();
    COMMLOG(OS_LOG_INFO, "running the kxRescan end");

    std::string path = GetDiskPathForWWN(wwn);
    if (!path.empty()) {
        COMMLOG(OS_LOG_INFO, "Target Snapshot ID [%s]", snapshotID.c_str());
    } else {
        COMMLOG(OS_LOG_INFO, "no find lun");
        COMMLOG(OS_LOG_INFO, "exit ScanSnapshotPreare successfully!");
    }
    return path;
}

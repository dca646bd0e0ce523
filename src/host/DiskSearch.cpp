// Finds the device with a WWN among those that this host has.

#include "host/ByIdLink.h"
#include "host/CommandLines.h"
#include "host/DeviceNames.h"
#include "host/DiskIdentity.h"
#include "host/FullSearch.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"

#include <optional>

using namespace ovra::tessel;

namespace {

/** What log lines call the object; null for a type that has no disk. */
const char* labelOf(MOType type)
{
    return type == MO_LUN ? "Lun" : type == MO_SNAPSHOT ? "Snapshot" : nullptr;
}

/** True when the device that a line of the listing names is the one with this WWN. */
bool isDevice(CDiskScannerHandlerImpl& scanner, const ByIdLink& link, const std::string& wwn)
{
    COMMLOG(OS_LOG_INFO, "disk info [%s]", link.path.c_str());
    if (link.identifier.empty()) {
        return false;
    }
    COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", link.path.c_str());
    const DiskIdentity identity(scanner, link.path);
    COMMLOG(OS_LOG_INFO, "strSnapshotID [%s]", identity.lunId.c_str());
    return identity.wwn == wwn && link.identifier == wwn;
}

} // namespace

std::string CDiskScannerHandlerImpl::GetDiskPathForWWN(const std::string& wwn)
{
    const InterfaceRecord record("GetDiskPathForWWN");
    if (!g_korvexInstalled) {
        COMMLOG(OS_LOG_INFO, "Korvex is not installed");
        return std::string();
    }
    if (!isUsableWwn(wwn)) {
        return std::string();
    }
    std::string path;
    {
        CommandLines listing(" ls -al /dev/disk/by-id | grep " + wwn + " | grep -v part | grep scsi-");
        if (!listing.started()) {
            COMMLOG(OS_LOG_ERROR, "fstream is null");
            return std::string();
        }
        for (std::string line; path.empty() && listing.next(line);) {
            const std::optional<ByIdLink> link = ByIdLink::parse(line);
            if (link && isDevice(*this, *link, wwn)) {
                path = link->path;
                COMMLOG(OS_LOG_INFO, "strTemp [%s]", lastPart(path).c_str());
                rescanDevice(path);
            }
        }
    }
    record.write(RESULT_SUCCESS);
    return path;
}

std::string CDiskScannerHandlerImpl::GetDiskPath(std::string& objectID, std::string& wwn, MOType type)
{
    const InterfaceRecord record("GetDiskPath");
    const char* const label = labelOf(type);
    if (label == nullptr) {
        COMMLOG(OS_LOG_ERROR, "moType is wrong!");
        return std::string();
    }
    if (!isUsableWwn(wwn)) {
        return std::string();
    }
    std::string path = GetDiskPathForWWN(wwn);
    if (!path.empty()) {
        COMMLOG(OS_LOG_INFO, "---------GetDiskPathForWWN successfully---------!");
        return path;
    }
    return FullSearch(*this, record, label, objectID, wwn).run();
}

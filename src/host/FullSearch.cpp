#include "host/FullSearch.h"

#include "host/ByIdLink.h"
#include "host/CommandLines.h"
#include "host/DeviceNames.h"
#include "host/DiskIdentity.h"
#include "host/StaleDevice.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"

namespace ovra::tessel {

namespace {

const int PASSES = 2; // the second one sees the names that udev gave to the devices renewed in the first

} // namespace

void rescanDevice(const std::string& path)
{
    runCommand("echo 1 > /sys/block" + lastPart(path) + "/device/rescan");
}

bool FullSearch::list(Disks& disks)
{
    CommandLines listing("ls -al /dev/disk/by-id|grep -v part");
    if (!listing.started()) {
        m_record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "ls -al /dev/disk/by-id command is not enable!");
        return false;
    }
    for (std::string line; listing.next(line);) {
        if (line.find("../") == std::string::npos) {
            continue;
        }
        COMMLOG(OS_LOG_INFO, "strLine [%s]", line.c_str());
        const std::optional<ByIdLink> link = ByIdLink::parse(line);
        if (link && !link->identifier.empty()) {
            disks[link->path].insert(link->identifier);
        }
    }
    return true;
}

FullSearch::Outcome FullSearch::visit(const std::string& path, const std::set<std::string>& identifiers,
                                      bool mayRenew)
{
    COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", path.c_str());
    const DiskIdentity identity(m_scanner, path);
    COMMLOG(OS_LOG_INFO, "Target %s ID [%s]", m_label, m_objectId.c_str());
    if (identity.wwn == m_wwn && identifiers.count(m_wwn) != 0) {
        m_record.write(RESULT_SUCCESS);
        rescanDevice(path);
        COMMLOG(OS_LOG_INFO, "---------GetDiskPath successfully---------!");
        return Outcome::FOUND;
    }
    COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
    if (!mayRenew || identity.wwn != m_wwn) {
        return Outcome::NOT_THIS_ONE;
    }
    switch (StaleDevice(m_scanner, m_record, path, m_wwn).renew()) {
    case StaleDevice::Outcome::RENEWED:
        return Outcome::RENEWED;
    case StaleDevice::Outcome::NO_LISTING:
        return Outcome::GIVEN_UP;
    case StaleDevice::Outcome::NO_DEVICE:
        break;
    }
    return Outcome::NOT_THIS_ONE;
}

std::string FullSearch::run()
{
    bool again = true;
    for (int pass = 1; pass <= PASSES && again; ++pass) {
        again = false;
        Disks disks;
        if (!list(disks)) {
            return std::string();
        }
        const bool mayRenew = !g_korvexInstalled;
        if (!mayRenew) {
            COMMLOG(OS_LOG_INFO, "Korvex installed,No need to delete scsi_device");
        }
        COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
        for (const auto& [path, identifiers] : disks) {
            switch (visit(path, identifiers, mayRenew)) {
            case Outcome::FOUND:
                return path;
            case Outcome::GIVEN_UP:
                return std::string();
            case Outcome::RENEWED:
                again = true;
                break;
            case Outcome::NOT_THIS_ONE:
                break;
            }
        }
    }
    return std::string();
}

} // namespace ovra::tessel

#include "host/StaleDevice.h"

#include "host/CommandLines.h"
#include "host/DeviceRemoval.h"
#include "host/MultipathMaps.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"

#include <unistd.h>

namespace ovra::tessel {

const char* const SEARCH_SEPARATOR = "=========================================\n";

namespace {

const char* const LUN_NEVER_REMOVED = "0";

/** True when the kernel says that the disk at the address has another name by now. */
bool isOtherDisk(const ScsiAddress& address, const std::string& device)
{
    const std::string disks = "/sys/class/scsi_device/" + address.text + "/device/block";
    if (access(disks.c_str(), F_OK) != 0 || access((disks + lastPart(device)).c_str(), F_OK) == 0) {
        return false;
    }
    COMMLOG(OS_LOG_ERROR, "%s is no longer the device at %s: it is not removed. Scan again.", device.c_str(),
            address.text.c_str());
    return true;
}

} // namespace

std::optional<StaleDevice::Disk> StaleDevice::disk() const
{
    const std::string name = lastName(m_path);
    if (!isMapperName(name)) {
        return Disk{m_path, "/dev/" + name};
    }
    CommandLines listing("multipath -ll");
    if (!listing.started()) {
        m_record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "multipath -ll is not enable!");
        return std::nullopt;
    }
    std::vector<std::string> lines;
    for (std::string line; listing.next(line);) {
        lines.push_back(line);
    }
    const std::optional<std::string> first = firstPathOf(name, lines);
    if (!first) {
        COMMLOG(OS_LOG_ERROR, "multipath -ll shows no path device of %s: nothing is removed for it.",
                name.c_str());
        return std::nullopt;
    }
    return Disk{"/dev/" + *first, "/dev/" + *first};
}

void StaleDevice::renewAt(const ScsiAddress& address, const Disk& disk) const
{
    const auto isWanted = [&](const DiskIdentity& identity) { return identity.wwn == m_wwn; };
    if (!isReadyForRemoval(m_scanner, disk.path, disk.device, isWanted) ||
        isOtherDisk(address, disk.device)) {
        return;
    }
    const std::string removal = "echo 1 > /sys/class/scsi_device/" + address.text + "/device/delete";
    COMMLOG(OS_LOG_INFO, "strShellCmd NO1 [%s]", removal.c_str());
    runCommand(removal);
    const std::string scan = "echo \"- - -\" > /sys/class/scsi_host/host" + address.host + "/scan";
    COMMLOG(OS_LOG_INFO, "strShellCmd NO2 [%s]", scan.c_str());
    runCommand(scan);
    COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
    sleep(1);
}

StaleDevice::Outcome StaleDevice::renew()
{
    const std::optional<Disk> stale = disk();
    if (!stale) {
        return Outcome::NO_DEVICE;
    }
    CommandLines listing(LSSCSI);
    if (!listing.started()) {
        m_record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "lsscsi is not enable!");
        return Outcome::NO_LISTING;
    }
    for (std::string line; listing.next(line);) {
        const std::optional<ScsiAddress> address = addressOfLine(line, stale->device);
        if (address && address->lun != LUN_NEVER_REMOVED) {
            renewAt(*address, *stale);
        }
    }
    return Outcome::RENEWED;
}

} // namespace ovra::tessel

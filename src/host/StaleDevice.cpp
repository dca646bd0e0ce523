#include "host/StaleDevice.h"

#include "host/CommandLines.h"
#include "host/DeviceRemoval.h"
#include "observer/Steps.h"
#include "session/CallsAtWork.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"

#include <ovra/disk/ByIdLink.h>
#include <ovra/disk/Files.h>
#include <ovra/disk/Lsscsi.h>
#include <ovra/disk/Multipath.h>

#include <algorithm>
#include <unistd.h>

namespace ovra::tessel {

// docs/oddities.md#line-feed
const char* const SEARCH_SEPARATOR = "=========================================\n";

namespace {

constexpr const char* LUN_NEVER_REMOVED = "0"; // docs/oddities.md#lun-0
constexpr int NAME_LOOKS = 100;
constexpr useconds_t LOOK_EVERY_US = 100000;

struct Disk
{
    std::string path;   ///< by which it is opened
    std::string device; ///< as lsscsi names it
};

/** Where the kernel shows which disk is at an address. */
std::string blockFolder(const disk::ScsiAddress& address)
{
    return "/sys/class/scsi_device/" + address.text + "/device/block";
}

/** Looks whether the kernel says that the disk at the address has another name by now, and says so. */
bool checkAddress(const disk::ScsiAddress& address, const std::string& device)
{
    const std::string disks = blockFolder(address);
    if (access(disks.c_str(), F_OK) != 0 || access((disks + disk::lastPart(device)).c_str(), F_OK) == 0) {
        return true;
    }
    COMMLOG(OS_LOG_ERROR, "%s is no longer the device at %s: it is not removed. Scan again.", device.c_str(),
            address.text.c_str());
    tellStep(HostEvent::REFUSED, device, "no longer the device at " + address.text);
    return false;
}

/** True when a link with this identity leads to the disk, or to a device-mapper node on it. */
bool isNamed(const std::string& name, const std::string& wwn)
{
    const std::vector<std::string> links = disk::namesIn(disk::BY_ID_DIRECTORY);
    return std::any_of(links.begin(), links.end(), [&](const std::string& link) {
        const std::string node = disk::lastName(disk::targetOf(disk::BY_ID_DIRECTORY + link));
        return disk::identifierOf(link) == wwn &&
               (node == name || access(("/sys/block/" + node + "/slaves/" + name).c_str(), F_OK) == 0);
    });
}

/** The SCSI disk behind a path. */
std::optional<Disk> diskOf(const InterfaceRecord& record, const std::string& path)
{
    const std::string name = disk::lastName(path);
    if (disk::isDiskName(name)) {
        return Disk{path, "/dev/" + name};
    }
    if (!disk::isMapperName(name)) {
        COMMLOG(OS_LOG_WARN, "/dev/%s stands under old names, and is no SCSI disk: it is not removed.",
                name.c_str());
        return std::nullopt;
    }
    CommandLines listing("multipath -ll");
    if (!listing.started()) {
        record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "multipath -ll is not enable!");
        return std::nullopt;
    }
    std::vector<std::string> lines;
    for (std::string line; listing.next(line);) {
        lines.push_back(line);
    }
    listing.sayIfNotRun();
    const std::optional<std::string> first = disk::firstPathOf(name, lines);
    if (!first) {
        COMMLOG(OS_LOG_ERROR, "multipath -ll shows no path device of %s: nothing is removed for it.",
                name.c_str());
        return std::nullopt;
    }
    return Disk{"/dev/" + *first, "/dev/" + *first};
}

void waitForName(const disk::ScsiAddress& address, const std::string& wwn)
{
    for (int look = 0; look < NAME_LOOKS; ++look) {
        for (const std::string& name : disk::namesIn(blockFolder(address))) {
            if (isNamed(name, wwn)) {
                return;
            }
        }
        pauseOrEnd(LOOK_EVERY_US);
    }
    COMMLOG(OS_LOG_WARN, "The device at %s has got no name of its own yet: scan again if it is not found.",
            address.text.c_str());
}

void renewAt(const disk::ScsiAddress& address, const Disk& disk, const std::string& wwn)
{
    const auto isWanted = [&](const disk::DiskIdentity& identity) { return identity.wwn == wwn; };
    if (!prepareRemoval(disk.path, disk.device, isWanted) || !checkAddress(address, disk.device)) {
        return;
    }
    const std::string removal = "echo 1 > /sys/class/scsi_device/" + address.text + "/device/delete";
    COMMLOG(OS_LOG_INFO, "strShellCmd NO1 [%s]", removal.c_str());
    runCommand(removal);
    const std::string scan = "echo \"- - -\" > /sys/class/scsi_host/host" + address.host + "/scan";
    COMMLOG(OS_LOG_INFO, "strShellCmd NO2 [%s]", scan.c_str());
    runCommand(scan);
    COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
    sleepOrEnd(1);
    waitForName(address, wwn);
    tellStep(HostEvent::RENEWED, disk.device, address.text);
}

} // namespace

Renewal renewStaleDevice(const InterfaceRecord& record, const std::string& path, const std::string& wwn)
{
    const std::optional<Disk> stale = diskOf(record, path);
    if (!stale) {
        return Renewal::NO_DEVICE;
    }
    CommandLines listing("lsscsi");
    if (!listing.started()) {
        record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "lsscsi is not enable!");
        return Renewal::NO_LISTING;
    }
    for (std::string line; listing.next(line);) {
        const std::optional<disk::ScsiAddress> address = disk::addressOfLine(line, stale->device);
        if (address && address->lun != LUN_NEVER_REMOVED) {
            renewAt(*address, *stale, wwn);
        }
    }
    listing.sayIfNotRun();
    return Renewal::DONE;
}

} // namespace ovra::tessel

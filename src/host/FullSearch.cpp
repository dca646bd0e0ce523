#include "host/FullSearch.h"

#include "host/CommandLines.h"
#include "host/DeviceRemoval.h"
#include "host/Korvex.h"
#include "host/NameSearch.h"
#include "host/StaleDevice.h"
#include "session/CallsAtWork.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"
#include "storage/DiskKinds.h"

#include <ovra/disk/Names.h>
#include <ovra/disk/Nodes.h>

#include <map>
#include <set>

namespace ovra::tessel {

namespace {

constexpr int PASSES = 2; // the second one sees the names that udev gave to the devices renewed in the first

using Disks = std::map<std::string, std::set<std::string>>; ///< identifiers by path

enum class Visit
{
    NOT_THIS_ONE,
    FOUND,
    RENEWED, ///< was there under the names of another disk; look for it again
    GIVEN_UP
};

/** The search through every disk of this host for the one with a WWN. */
struct FullSearch
{
    const InterfaceRecord& record;
    const char* const label;
    const std::string& objectId;
    const std::string& wwn;

    bool list(Disks& disks) const;
    Visit visit(const std::string& path, const std::set<std::string>& identifiers, bool mayRenew) const;
    void sayUnnamed(const Disks& disks) const;
    /** The device's path, or an empty one. */
    std::string run() const;
};

bool FullSearch::list(Disks& disks) const
{
    CommandLines listing("ls -al /dev/disk/by-id|grep -v part");
    if (!listing.started()) {
        record.write(RESULT_BAD_ARGUMENT);
        COMMLOG(OS_LOG_ERROR, "ls -al /dev/disk/by-id command is not enable!");
        return false;
    }
    LinkReader links;
    for (std::string line; listing.next(line);) {
        if (!disk::ByIdLink::isLink(line)) {
            continue;
        }
        COMMLOG(OS_LOG_INFO, "strLine [%s]", line.c_str());
        const std::optional<disk::ByIdLink> link = links.parse(line);
        if (link && !link->identifier.empty()) {
            disks[link->path].insert(link->identifier);
        }
    }
    return true;
}

Visit FullSearch::visit(const std::string& path, const std::set<std::string>& identifiers,
                        bool mayRenew) const
{
    COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", path.c_str());
    const disk::DiskIdentity identity = disk::readIdentity(path);
    COMMLOG(OS_LOG_INFO, "Target %s ID [%s]", label, objectId.c_str());
    if (identity.wwn == wwn && identifiers.count(wwn) != 0) { // docs/oddities.md#wwn-case
        record.write(RESULT_SUCCESS);
        rescanDevice(path);
        COMMLOG(OS_LOG_INFO, "---------GetDiskPath successfully---------!");
        return Visit::FOUND;
    }
    COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
    if (!mayRenew || identity.wwn != wwn) {
        return Visit::NOT_THIS_ONE;
    }
    switch (renewStaleDevice(record, path, wwn)) {
    case Renewal::DONE:
        return Visit::RENEWED;
    case Renewal::NO_LISTING:
        return Visit::GIVEN_UP;
    case Renewal::NO_DEVICE:
        break;
    }
    return Visit::NOT_THIS_ONE;
}

/** Says which disks the search could not see: they carry the WWN, but udev has given them no name. */
void FullSearch::sayUnnamed(const Disks& disks) const
{
    for (const std::string& name : disk::disksWithWwn(wwn)) {
        if (disks.count(std::string(disk::BY_ID_DIRECTORY) + "../../" + name) == 0) {
            COMMLOG(OS_LOG_WARN,
                    "/dev/%s carries the WWN of %s %s, but has no name in /dev/disk/by-id: it is "
                    "not found before udev has named it.",
                    name.c_str(), label, objectId.c_str());
        }
    }
}

std::string FullSearch::run() const
{
    Disks disks;
    bool again = true;
    for (int pass = 1; pass <= PASSES && again; ++pass) {
        again = false;
        disks.clear();
        if (!list(disks)) {
            return std::string();
        }
        const bool mayRenew = mayRemoveDevices();
        if (g_korvexInstalled) {
            COMMLOG(OS_LOG_INFO, "Korvex installed,No need to delete scsi_device");
        }
        COMMLOG(OS_LOG_INFO, "%s", SEARCH_SEPARATOR);
        for (const auto& [path, identifiers] : disks) {
            throwIfEnded();
            switch (visit(path, identifiers, mayRenew)) {
            case Visit::FOUND:
                return path;
            case Visit::GIVEN_UP:
                return std::string();
            case Visit::RENEWED:
                again = true;
                break;
            case Visit::NOT_THIS_ONE:
                break;
            }
        }
    }
    sayUnnamed(disks);
    return std::string();
}

} // namespace

std::string findDisk(const std::string& objectId, const std::string& wwn, MOType type)
{
    const InterfaceRecord record("GetDiskPath");
    const char* const label = diskLabel(type);
    if (label == nullptr) {
        COMMLOG(OS_LOG_ERROR, "moType is wrong!");
        return std::string();
    }
    if (!checkWwn(wwn)) {
        return std::string();
    }
    std::string path = findByName(wwn);
    if (!path.empty()) {
        COMMLOG(OS_LOG_INFO, "---------GetDiskPathForWWN successfully---------!");
        return path;
    }
    return FullSearch{record, label, objectId, wwn}.run();
}

} // namespace ovra::tessel

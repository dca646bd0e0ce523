#include "host/NameSearch.h"

#include "host/CommandLines.h"
#include "host/DeviceRemoval.h"
#include "host/Korvex.h"
#include "session/CallsAtWork.h"
#include "session/InterfaceRecord.h"
#include "session/Log.h"

#include <ovra/disk/Names.h>

namespace ovra::tessel {

namespace {

constexpr size_t TOLD = 300; // characters of a line that is left out

/** True when the device that a line of the listing names is the one with this WWN. */
bool isDevice(const disk::ByIdLink& link, const std::string& wwn)
{
    COMMLOG(OS_LOG_INFO, "disk info [%s]", link.path.c_str());
    if (link.identifier.empty()) {
        return false;
    }
    COMMLOG(OS_LOG_INFO, "strDiskPath [%s]", link.path.c_str());
    const disk::DiskIdentity identity = disk::readIdentity(link.path);
    COMMLOG(OS_LOG_INFO, "strSnapshotID [%s]", identity.lunId.c_str());
    return identity.wwn == wwn && link.identifier == wwn;
}

} // namespace

void rescanDevice(const std::string& path)
{
    runCommand("echo 1 > /sys/block" + disk::lastPart(path) + "/device/rescan");
}

std::optional<disk::ByIdLink> LinkReader::parse(const std::string& line)
{
    std::optional<disk::ByIdLink> link = disk::ByIdLink::parse(line);
    if (!link && disk::ByIdLink::isLink(line)) {
        COMMLOG(m_unusual.next(), "a link to a device of an unusual name is not looked at [%s]",
                line.substr(0, TOLD).c_str());
    }
    return link;
}

LinkReader::~LinkReader()
{
    if (m_unusual.rest() != 0) {
        COMMLOG(OS_LOG_WARN, "%u more links to devices of unusual names are not looked at", m_unusual.rest());
    }
}

std::string findByName(const std::string& wwn)
{
    const InterfaceRecord record("GetDiskPathForWWN");
    if (!g_korvexInstalled) {
        COMMLOG(OS_LOG_INFO, "Korvex is not installed");
        return std::string();
    }
    if (!checkWwn(wwn)) {
        return std::string();
    }
    std::string path;
    {
        CommandLines listing(" ls -al /dev/disk/by-id | grep " + wwn + " | grep -v part | grep scsi-");
        if (!listing.started()) {
            COMMLOG(OS_LOG_ERROR, "fstream is null");
            return std::string();
        }
        LinkReader links;
        for (std::string line; path.empty() && listing.next(line);) {
            throwIfEnded();
            const std::optional<disk::ByIdLink> link = links.parse(line);
            if (link && isDevice(*link, wwn)) {
                path = link->path;
                COMMLOG(OS_LOG_INFO, "strTemp [%s]", disk::lastPart(path).c_str());
                rescanDevice(path);
            }
        }
    }
    record.write(RESULT_SUCCESS);
    return path;
}

} // namespace ovra::tessel

#include "ovra/disk/ScsiDisks.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Names.h"

#include <algorithm>
#include <cstdlib>

namespace ovra::disk {
namespace {

constexpr const char* BLOCK = "/sys/block/";
constexpr const char* SCSI_DEVICES = "/sys/class/scsi_device/";
constexpr std::uint64_t SECTOR = 512; // the kernel counts in these whatever the disk's own are
constexpr const char* DISK_TYPE = "0";
constexpr const char* NAA = "3"; // in a WWID, before a designator of this kind

std::string folderOf(const std::string& node, const std::string& root)
{
    return root + BLOCK + node;
}

std::uint64_t bytesOf(const std::string& folder)
{
    return std::strtoull(valueThere(folder + "/size").c_str(), nullptr, 10) * SECTOR;
}

bool isOne(const std::string& file)
{
    return valueThere(file) == "1";
}

std::string addressOf(const std::string& folder)
{
    return lastName(targetThere(folder + "/device"));
}

/** Whether an address is on one of these hosts. */
bool isOn(const std::vector<std::string>& hosts, const std::string& address)
{
    return std::find(hosts.begin(), hosts.end(), address.substr(0, address.find(':'))) != hosts.end();
}

std::string deviceOf(const std::string& address, const std::string& root)
{
    return std::string(root).append(SCSI_DEVICES).append(address).append("/device");
}

/** The folder of the block devices of a SCSI device: one for a disk, once it is probed. */
std::string blocksOf(const std::string& address, const std::string& root)
{
    return deviceOf(address, root) + "/block";
}

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

} // namespace

std::optional<ScsiDisk> scsiDisk(const std::string& name, const std::string& root)
{
    const std::string folder = folderOf(name, root);
    ScsiDisk disk;
    disk.name = name;
    disk.address = isDiskName(name) ? addressOf(folder) : std::string();
    if (!ScsiAddress::parse(disk.address)) {
        return std::nullopt;
    }
    disk.state = valueThere(folder + "/device/state");
    disk.bytes = bytesOf(folder);
    disk.isReadOnly = isOne(folder + "/ro");
    disk.known = knownAt(disk.address, root);
    for (const std::string& holder : namesThere(folder + "/holders")) {
        if (multipathMap(holder, root)) {
            disk.map = holder;
        }
    }
    return disk;
}

std::vector<ScsiAddress> scsiAddressesOf(const std::vector<std::string>& hosts, const std::string& root)
{
    std::vector<ScsiAddress> addresses;
    for (const std::string& name : namesThere(root + SCSI_DEVICES)) {
        const std::optional<ScsiAddress> address =
            isOn(hosts, name) ? ScsiAddress::parse(name) : std::nullopt;
        if (address) {
            addresses.push_back(*address);
        }
    }
    return addresses;
}

DiskIdentity knownAt(const std::string& address, const std::string& root)
{
    const std::string page = contentThere(deviceOf(address, root) + "/vpd_pg83");
    return page.empty() ? DiskIdentity() : parsePage83(page).value_or(DiskIdentity());
}

std::optional<ScsiDisk> scsiDiskAt(const std::string& address, const std::string& root)
{
    const std::vector<std::string> names = namesThere(blocksOf(address, root));
    return names.empty() ? std::nullopt : scsiDisk(names.front(), root);
}

std::vector<ScsiDisk> scsiDisksAt(const std::vector<ScsiAddress>& addresses, const std::string& root)
{
    std::vector<ScsiDisk> disks;
    for (const ScsiAddress& address : addresses) {
        if (std::optional<ScsiDisk> disk = scsiDiskAt(address.text, root)) {
            disks.push_back(std::move(*disk));
        }
    }
    std::sort(disks.begin(), disks.end(),
              [](const ScsiDisk& one, const ScsiDisk& other) { return one.name < other.name; });
    return disks;
}

std::vector<ScsiDisk> scsiDisksOf(const std::vector<std::string>& hosts, const std::string& root)
{
    return scsiDisksAt(scsiAddressesOf(hosts, root), root);
}

bool hasUnfinishedDisks(const std::vector<std::string>& hosts, const std::string& root)
{
    const std::vector<ScsiAddress> addresses = scsiAddressesOf(hosts, root);
    return std::any_of(addresses.begin(), addresses.end(), [&](const ScsiAddress& address) {
        return namesThere(blocksOf(address.text, root)).empty() &&
               valueThere(deviceOf(address.text, root) + "/type") == DISK_TYPE;
    });
}

std::optional<MultipathMap> multipathMap(const std::string& node, const std::string& root)
{
    const std::string folder = folderOf(node, root);
    const std::string uuid = isMapperName(node) ? valueThere(folder + "/dm/uuid") : std::string();
    if (!startsWith(uuid, MULTIPATH_UUID)) {
        return std::nullopt;
    }
    MultipathMap map;
    map.node = node;
    map.name = valueThere(folder + "/dm/name");
    map.wwid = uuid.substr(std::string(MULTIPATH_UUID).size());
    map.bytes = bytesOf(folder);
    map.isReadOnly = isOne(folder + "/ro");
    map.isSuspended = isOne(folder + "/dm/suspended");
    const std::string slaves = folder + "/slaves/";
    for (const std::string& path : namesThere(slaves)) {
        if (isThere(slaves + path)) { // else it is removed, and not let go yet
            map.paths.push_back(path);
        }
    }
    return map;
}

std::optional<MultipathMap> mapOfWwn(const std::string& wwn, const std::string& root)
{
    for (const std::string& node : namesThere(root + BLOCK)) {
        std::optional<MultipathMap> map = multipathMap(node, root);
        if (map && map->wwid == NAA + wwn) {
            return map;
        }
    }
    return std::nullopt;
}

bool isMapPartition(const std::string& node, const std::string& root)
{
    // kpartx names a partition's UUID after the map's: part1-mpath-3600...
    const std::string uuid = valueThere(folderOf(node, root) + "/dm/uuid");
    return startsWith(uuid, "part") && uuid.find(std::string("-") + MULTIPATH_UUID) != std::string::npos;
}

} // namespace ovra::disk

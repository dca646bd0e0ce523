#include "KernelDisks.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using namespace ovra::tessel;

namespace {

std::string sectors(std::uint64_t bytes)
{
    return std::to_string(bytes / 512) + "\n";
}

std::string text(const std::vector<unsigned char>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

} // namespace

LocalDiskTest::LocalDiskTest() : manager(CDeviceManager::getInstance(0, 0))
{
    platform.reset();
    lun = R"({"ID":"7","WWN":")" + std::string(WWN) + R"(","CAPACITY":")" + std::to_string(BYTES / 512) +
          R"(","SECTORSIZE":"512"})";
    platform.replyWith([this](const SentRequest& request) {
        return request.path == "/lun/7" ? Reply::object(lun) : Reply::ok();
    });
    setenv("PATH", "/nonexistent", 1); // what is installed here does not matter
    options.findSeconds = 0;
    options.mapSeconds = 0;
    options.stepSeconds = 5;
    seam.onUsleep = [this] { kernel(); };
    seam.semaphoreId = 41;
    seam.semaphoreValue = 1;
}

LocalDiskTest::~LocalDiskTest()
{
    seam.onUsleep = nullptr;
    CDeviceManager::releaseInstance(manager);
}

void LocalDiskTest::add(const KernelDisk& disk)
{
    SeamDisk& answers = seam.addDisk(disk.name, disk.now.empty() ? WWN : disk.now);
    if (disk.now.empty()) {
        answers.pages.clear();
    }
    const std::string folder = "/sys/block/" + disk.name;
    seam.write(folder + "/size", sectors(disk.bytes));
    seam.write(folder + "/ro", disk.isReadOnly ? "1\n" : "0\n");
    fs::create_directories(seam.root + folder + "/holders");
    // The device's folder stands at its address, as in the kernel's tree.
    const std::string device = "/sys/devices/" + disk.address;
    seam.write(device + "/state", disk.state + "\n");
    seam.write(device + "/type", "0\n");
    seam.write(device + "/delete", "");
    seam.write(device + "/rescan", "");
    if (!disk.known.empty()) {
        seam.write(device + "/vpd_pg83", text(page83(disk.known)));
    }
    fs::create_directories(seam.root + device + "/block/" + disk.name);
    fs::remove_all(seam.root + folder + "/device");
    seam.link(folder + "/device", "../../devices/" + disk.address);
    seam.link("/sys/class/scsi_device/" + disk.address + "/device", "../../../devices/" + disk.address);
}

void LocalDiskTest::addForeign(const std::string& name, const std::string& address)
{
    KernelDisk foreign;
    foreign.name = name;
    foreign.address = address;
    foreign.known = foreign.now = OTHER_WWN;
    add(foreign);
}

void LocalDiskTest::remove(const std::string& disk)
{
    const std::string folder = seam.root + "/sys/block/" + disk;
    const std::string address = fs::read_symlink(folder + "/device").filename();
    fs::remove_all(folder);
    fs::remove_all(seam.root + "/sys/devices/" + address);
    fs::remove_all(seam.root + "/sys/class/scsi_device/" + address);
    for (const auto& node : fs::directory_iterator(seam.root + "/sys/block")) {
        fs::remove(node.path() / "slaves" / disk);
    }
    seam.disks.erase(disk);
}

void LocalDiskTest::add(const KernelMap& map)
{
    const std::string folder = "/sys/block/" + map.node;
    seam.write(folder + "/dm/uuid", "mpath-" + map.wwid + "\n");
    seam.write(folder + "/dm/name", map.wwid + "\n");
    seam.write(folder + "/dm/suspended", map.isSuspended ? "1\n" : "0\n");
    seam.write(folder + "/size", sectors(map.bytes));
    seam.write(folder + "/ro", map.isReadOnly ? "1\n" : "0\n");
    seam.write(folder + "/dev", "253:3\n");
    fs::create_directories(seam.root + folder + "/slaves");
    for (const std::string& path : map.paths) {
        seam.link(folder + "/slaves/" + path, "../../" + path);
        seam.link("/sys/block/" + path + "/holders/" + map.node, "../../" + map.node);
    }
    seam.disks[map.node];
}

void LocalDiskTest::addSession(const std::string& host, const std::string& state)
{
    const std::string folder = "/sys/devices/platform/host" + host + "/session" + host;
    seam.write(folder + "/state", state + "\n");
    seam.write(folder + "/initiatorname", "iqn.2020-01.test:host\n");
    seam.write(folder + "/targetname", "iqn.2020-01.test:array\n");
    seam.link("/sys/class/iscsi_session/session" + host, "../.." + folder.substr(4));
    seam.write("/sys/class/scsi_host/host" + host + "/scan", "");
}

void LocalDiskTest::kernel()
{
    for (const auto& [name, answers] : std::map<std::string, SeamDisk>(seam.disks)) {
        if (written("/sys/block/" + name + "/device/delete") == "1") {
            remove(name);
        }
    }
    ++seam.clock; // a pause takes a second
    if (onKernel) {
        onKernel();
    }
}

DiskJob LocalDiskTest::job()
{
    manager->useConnection("127.0.0.1", 8088, "210123", "token", "cookie");
    return {*manager, StorageObject::lun("7"), options};
}

std::string LocalDiskTest::written(const std::string& file)
{
    std::ifstream stream(seam.root + file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> LocalDiskTest::commands()
{
    return platform.lines("system: ");
}

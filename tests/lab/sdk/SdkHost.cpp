// The SDK's host side as commands, for the shell tests in the guest: one login, the operations named, one
// logout.
//
//   sdk_host OPERATION ID [OPERATION ID]...
//
// Operations: attach-lun, scan-lun, remove-lun, detach-lun, the same for snapshot, and scan-snapshots
// (ID,ID,...: a thread each). A scan prints the path that it found, or an empty line. With disk- before them
// attach, find, refresh and release are those of LocalDisk, which print path, size and the paths with their
// states.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace ovra::tessel;

namespace {

std::string environment(const char* name)
{
    const char* const value = std::getenv(name);
    if (value == nullptr) {
        throw std::runtime_error(std::string(name) + " is not set");
    }
    return value;
}

CDiskScannerHandler& scannerOf(CDeviceManager& array)
{
    return *static_cast<CDiskScannerHandler*>(array.getHandler(DISKSCANNER_HANDLER));
}

CDiskAttachHandler& attachOf(CDeviceManager& array)
{
    return *static_cast<CDiskAttachHandler*>(array.getHandler(DISKATTACH_HANDLER));
}

CDeviceManager* loggedIn()
{
    CDeviceManager* const array = CDeviceManager::getInstance(0, 0);
    const unsigned int port = static_cast<unsigned int>(std::stoul(environment("ARRAY_PORT")));
    if (!array->loginDevice("127.0.0.1", port, "admin", environment("TESSEL_PASSWORD"), USERTYPE_LOCAL)) {
        throw std::runtime_error("login failed");
    }
    return array;
}

void logOut(CDeviceManager* array)
{
    array->logoutDevice();
    CDeviceManager::releaseInstance(array);
}

/** Every thread has a device manager of its own: one is not to be shared. */
void scanAtOnce(const std::string& ids)
{
    std::vector<std::string> wanted;
    std::istringstream list(ids);
    for (std::string id; std::getline(list, id, ',');) {
        wanted.push_back(id);
    }
    std::vector<std::string> found(wanted.size());
    std::vector<CDeviceManager*> arrays;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < wanted.size(); ++i) {
        arrays.push_back(loggedIn());
        CDiskScannerHandler* const scanner = &scannerOf(*arrays.back());
        threads.emplace_back([&, i, scanner] { found[i] = scanner->scanSnapshotAfterAttach(wanted[i]); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (CDeviceManager* const array : arrays) {
        logOut(array);
    }
    for (const std::string& path : found) {
        std::cout << path << "\n";
    }
}

using Run = std::function<void(CDeviceManager&, std::string)>;

HostInitiator host()
{
    return HostInitiator::iscsi(environment("INITIATOR"));
}

void show(const LocalDisk& disk)
{
    std::cout << disk.path() << " " << disk.size();
    for (const DiskPath& path : disk.paths()) {
        std::cout << " " << path.device << "=" << path.state;
    }
    std::cout << std::endl; // before what the next operation says
}

/** Attaches, leaves it so, and shows what came of it. */
void attachDisk(CDeviceManager& array, const StorageObject& volume)
{
    LocalDisk disk = LocalDisk::attach(array, volume, host());
    disk.keep();
    show(disk);
}

void refreshDisk(CDeviceManager& array, const StorageObject& volume)
{
    LocalDisk disk = LocalDisk::find(array, volume, host());
    disk.keep();
    disk.refresh();
    show(disk);
}

void findDisk(CDeviceManager& array, const StorageObject& volume)
{
    LocalDisk disk = LocalDisk::find(array, volume, host());
    disk.keep();
    show(disk);
}

const std::map<std::string, Run> OPERATIONS = {
    {"disk-attach-lun",
     [](CDeviceManager& array, const std::string& id) { attachDisk(array, StorageObject::lun(id)); }},
    {"disk-attach-snapshot",
     [](CDeviceManager& array, const std::string& id) { attachDisk(array, StorageObject::snapshot(id)); }},
    {"disk-find-lun",
     [](CDeviceManager& array, const std::string& id) { findDisk(array, StorageObject::lun(id)); }},
    {"disk-refresh-lun",
     [](CDeviceManager& array, const std::string& id) { refreshDisk(array, StorageObject::lun(id)); }},
    {"disk-release-lun",
     [](CDeviceManager& array, const std::string& id) {
         LocalDisk::release(array, StorageObject::lun(id), host());
     }},
    {"disk-release-lun-in-use",
     [](CDeviceManager& array, const std::string& id) {
         LocalDisk::release(array, StorageObject::lun(id), host(), LocalDiskOptions(), true);
     }},
    {"hide-lun", [](CDeviceManager& array,
                    const std::string& id) { ensureHidden(array, StorageObject::lun(id), host()); }},
    {"show-lun", [](CDeviceManager& array,
                    const std::string& id) { ensureVisible(array, StorageObject::lun(id), host()); }},
    {"disk-release-snapshot",
     [](CDeviceManager& array, const std::string& id) {
         LocalDisk::release(array, StorageObject::snapshot(id), host());
     }},
    {"attach-lun",
     [](CDeviceManager& array, const std::string& id) {
         attachOf(array).attachLunToHost(id, environment("INITIATOR"), "127.0.0.1");
     }},
    {"attach-snapshot",
     [](CDeviceManager& array, const std::string& id) {
         attachOf(array).attachSnapshotToHost(id, environment("INITIATOR"), "127.0.0.1");
     }},
    {"scan-lun", [](CDeviceManager& array,
                    std::string id) { std::cout << scannerOf(array).scanLunAfterAttach(id) << "\n"; }},
    {"scan-snapshot",
     [](CDeviceManager& array, std::string id) {
         std::cout << scannerOf(array).scanSnapshotAfterAttach(id) << "\n";
     }},
    {"scan-snapshots", [](CDeviceManager&, const std::string& ids) { scanAtOnce(ids); }},
    {"remove-lun", [](CDeviceManager& array, std::string id) { scannerOf(array).scanLunBeforeDetach(id); }},
    {"remove-snapshot",
     [](CDeviceManager& array, std::string id) { scannerOf(array).scanSnapshotBeforeDetach(id); }},
    {"detach-lun",
     [](CDeviceManager& array, const std::string& id) {
         attachOf(array).detachLunFromHost(id, environment("INITIATOR"));
     }},
    {"detach-snapshot",
     [](CDeviceManager& array, const std::string& id) {
         attachOf(array).detachSnapshotFromHost(id, environment("INITIATOR"));
     }},
};

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || argc % 2 == 0) {
        std::cerr << "usage: sdk_host OPERATION ID [OPERATION ID]...\n";
        return 2;
    }
    try {
        CDeviceManager* const array = loggedIn();
        for (int i = 1; i + 1 < argc; i += 2) {
            OPERATIONS.at(argv[i])(*array, argv[i + 1]);
        }
        logOut(array);
    } catch (const std::exception& e) {
        std::cerr << "sdk_host: " << e.what() << "\n";
        return 1;
    }
    return 0;
}

#include "StubHost.h"

#include "Faults.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <linux/fs.h>
#include <mutex>
#include <sched.h>
#include <scsi/sg.h>
#include <sys/mount.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace torture {
namespace {

constexpr const char* TOOLS = "/sys/tools"; // in a file system of ours, which goes with the process
constexpr const char* DISK = "/sys/block/sdc";
constexpr const char* DEVICE = "/sys/devices/1:0:0:1";
constexpr const char* AT_ADDRESS = "/sys/class/scsi_device/1:0:0:1";
constexpr const char* NODE = "/dev/sdc";
constexpr const char* SCAN = "/sys/class/scsi_host/host1/scan";
constexpr size_t PAGE_BYTES = 256;

struct Disk
{
    std::string wwn;
    std::string lunId;
    std::uint64_t bytes = 0;
};

/** Made by the first who asks, and never destroyed. */
Disk& toCome()
{
    static Disk* const disk = new Disk;
    return *disk;
}

std::mutex g_kernel;
std::atomic<long> g_passed{0}; ///< nanoseconds

bool fail(const std::string& what)
{
    std::perror(what.c_str());
    return false;
}

void write(const std::string& path, const std::string& content, unsigned mode = 0644)
{
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    fs::permissions(path, static_cast<fs::perms>(mode));
}

void link(const std::string& path, const std::string& target)
{
    fs::create_directories(fs::path(path).parent_path());
    fs::create_symlink(target, path);
}

std::string contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/** Page 0x83: a NAA designator, then what the array numbers its LUN by. */
std::string page83(const Disk& disk)
{
    std::string page(PAGE_BYTES, '\0');
    page[1] = '\x83';
    page[3] = static_cast<char>(4 + disk.wwn.size() / 2);
    page[4] = 1;
    page[5] = 3;
    page[7] = static_cast<char>(disk.wwn.size() / 2);
    for (size_t i = 0; i < disk.wwn.size() / 2; ++i) {
        page[8 + i] = static_cast<char>(std::stoi(disk.wwn.substr(2 * i, 2), nullptr, 16));
    }
    return page;
}

void showDisk(const Disk& disk)
{
    const std::string page = page83(disk);
    write(std::string(DEVICE) + "/state", "running\n");
    write(std::string(DEVICE) + "/type", "0\n");
    write(std::string(DEVICE) + "/delete", "");
    write(std::string(DEVICE) + "/rescan", "");
    write(std::string(DEVICE) + "/vpd_pg83", page);
    fs::create_directories(std::string(DEVICE) + "/block/sdc");
    link(std::string(AT_ADDRESS) + "/device", "../../../devices/1:0:0:1");
    write(std::string(DISK) + "/size", std::to_string(disk.bytes / 512) + "\n");
    write(std::string(DISK) + "/ro", "0\n");
    write(std::string(DISK) + "/dev", "8:32\n");
    fs::create_directories(std::string(DISK) + "/holders");
    link(std::string(DISK) + "/device", "../../devices/1:0:0:1");
    write(NODE, page);
    link("/dev/disk/by-id/scsi-3" + disk.wwn, "../../sdc");
}

void hideDisk()
{
    for (const char* const part : {DISK, AT_ADDRESS, DEVICE, NODE}) {
        fs::remove_all(part);
    }
    for (const auto& name : fs::directory_iterator("/dev/disk/by-id")) {
        fs::remove(name);
    }
}

bool mountEmpty(const std::string& place)
{
    return mount("none", place.c_str(), "tmpfs", 0, "mode=755") == 0 || fail("a file system on " + place);
}

/** /dev with the few devices that every program needs. */
bool makeDev()
{
    const std::string made = "/sys/dev";
    fs::create_directories(made);
    if (!mountEmpty(made)) {
        return false;
    }
    for (const char* const name : {"null", "zero", "random", "urandom"}) {
        write(made + "/" + name, "");
        if (mount((std::string("/dev/") + name).c_str(), (made + "/" + name).c_str(), nullptr, MS_BIND,
                  nullptr) != 0) {
            return fail(name);
        }
    }
    fs::create_directories(made + "/disk/by-id");
    return mount(made.c_str(), "/dev", nullptr, MS_BIND | MS_REC, nullptr) == 0 || fail("/dev");
}

void makeTools()
{
    for (const char* const tool : {"sh", "ls", "grep"}) {
        link(std::string(TOOLS) + "/" + tool, std::string("/bin/") + tool);
    }
    write(std::string(TOOLS) + "/which", "#!/bin/sh\nexit 1\n",
          0755); // nothing of the Korvex product is here
    write(std::string(TOOLS) + "/lsscsi",
          "#!/bin/sh\n[ ! -e /sys/block/sdc ] || echo '[1:0:0:1]    disk    OVRA     TESSEL           0001  "
          "/dev/sdc '\n",
          0755);
    write(std::string(TOOLS) + "/rescan-scsi-bus.sh",
          "#!/bin/sh\ngrep -s PDT= Device_type= # a stub\necho '- - -' >" + std::string(SCAN) + "\n", 0755);
    setenv("PATH", TOOLS, 1);
}

void makeSession()
{
    const std::string session = "/sys/devices/platform/host1/session1";
    write(session + "/state", "LOGGED_IN\n");
    write(session + "/initiatorname", std::string(INITIATOR) + "\n");
    write(session + "/targetname", "iqn.2026-01.example:array\n");
    link("/sys/class/iscsi_session/session1", "../../devices/platform/host1/session1");
    write(SCAN, "");
    for (const char* const folder : {"/sys/block", "/sys/class/scsi_device", "/sys/class/fc_host"}) {
        fs::create_directories(folder);
    }
}

} // namespace

bool enterStubHost(const std::string& logs)
{
    const Aside aside;
    fs::create_directories(logs);
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        return fail("mounts of its own");
    }
    if (!mountEmpty(logs) || !mountEmpty("/sys") || !makeDev()) {
        return false;
    }
    if (mount("none", "/proc", "proc", 0, nullptr) != 0) {
        return fail("/proc");
    }
    makeTools();
    makeSession();
    return true;
}

void bringDisk(const std::string& wwn, const std::string& lunId, std::uint64_t bytes)
{
    const Aside aside;
    toCome() = {wwn, lunId, bytes};
}

void takeDisk()
{
    const Aside aside;
    const std::lock_guard<std::mutex> lock(g_kernel);
    toCome() = Disk();
    hideDisk();
}

bool isDiskThere()
{
    const Aside aside;
    return fs::exists(DISK);
}

void letKernelWork()
{
    const Aside aside;
    const std::lock_guard<std::mutex> lock(g_kernel);
    if (contentOf(std::string(DEVICE) + "/delete").compare(0, 1, "1") == 0) {
        hideDisk();
    }
    if (!contentOf(SCAN).empty()) {
        write(SCAN, "");
        if (!toCome().wwn.empty() && !fs::exists(DISK)) {
            showDisk(toCome());
        }
    }
}

void letTimePass(long nanoseconds)
{
    g_passed += nanoseconds;
    letKernelWork();
}

void addPassedTime(timespec& time)
{
    constexpr long SECOND = 1000000000;
    const long nanoseconds = time.tv_nsec + g_passed % SECOND;
    time.tv_sec += g_passed / SECOND + nanoseconds / SECOND;
    time.tv_nsec = nanoseconds % SECOND;
}

time_t passedSeconds()
{
    return g_passed / 1000000000;
}

bool isDiskRequest(unsigned long request)
{
    return request == SG_IO || request == BLKFLSBUF;
}

int answerAsDisk(int fd, unsigned long request, void* argument)
{
    const Aside aside;
    if (request == BLKFLSBUF) {
        return 0;
    }
    auto& inquiry = *static_cast<sg_io_hdr*>(argument);
    const bool isPage = inquiry.cmdp[1] != 0;
    std::array<char, PAGE_BYTES> page = {};
    if (isPage && pread(fd, page.data(), page.size(), 0) != static_cast<ssize_t>(page.size())) {
        errno = ENXIO;
        return -1;
    }
    std::copy(page.begin(), page.begin() + std::min<size_t>(page.size(), inquiry.dxfer_len),
              static_cast<char*>(inquiry.dxferp));
    inquiry.status = 0;
    return 0;
}

} // namespace torture

// The main job of a backup application: attach a LUN to this host, find its disk, write and read it, and take
// everything away again. Needs root, and a host whose iSCSI initiator is logged in to the array.

#include <tessel/Tessel.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const size_t BLOCK = 4096;
const size_t BLOCKS = 256;

void step(const std::string& text)
{
    std::cout << "\n== " << text << std::endl;
}

template <class Handler>
Handler& handlerOf(CDeviceManager& array, HANDLERTYPE type)
{
    return *static_cast<Handler*>(array.getHandler(type));
}

/** An open device, past the page cache: what is read is what the disk holds. */
class Device
{
public:
    explicit Device(const std::string& path) : m_fd(open(path.c_str(), O_RDWR | O_DIRECT | O_CLOEXEC))
    {
        if (m_fd < 0 || posix_memalign(&m_block, BLOCK, BLOCK) != 0) {
            throw std::runtime_error("cannot open " + path + ": are you root?");
        }
    }
    ~Device()
    {
        close(m_fd);
        std::free(m_block);
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    void write(size_t index)
    {
        fill(index);
        check(pwrite(m_fd, m_block, BLOCK, offset(index)), "write");
    }
    bool holds(size_t index)
    {
        check(pread(m_fd, m_block, BLOCK, offset(index)), "read");
        const std::vector<unsigned char> read(bytes(), bytes() + BLOCK);
        fill(index);
        return std::equal(read.begin(), read.end(), bytes());
    }
    void flush() { check(fsync(m_fd) == 0 ? static_cast<ssize_t>(BLOCK) : -1, "flush"); }

private:
    unsigned char* bytes() { return static_cast<unsigned char*>(m_block); }
    static off_t offset(size_t index) { return static_cast<off_t>(index * BLOCK); }
    void fill(size_t index)
    {
        for (size_t i = 0; i < BLOCK; ++i) {
            bytes()[i] = static_cast<unsigned char>(index * 31 + i * 7);
        }
    }
    static void check(ssize_t done, const char* what)
    {
        if (done != static_cast<ssize_t>(BLOCK)) {
            throw std::runtime_error(std::string("cannot ") + what + " the device");
        }
    }

    int m_fd;
    void* m_block = nullptr;
};

void useDisk(const std::string& path)
{
    Device device(path);
    step("Write " + std::to_string(BLOCKS) + " blocks to " + path);
    for (size_t i = 0; i < BLOCKS; ++i) {
        device.write(i);
    }
    device.flush();
    step("Read them back and compare");
    for (size_t i = 0; i < BLOCKS; ++i) {
        if (!device.holds(i)) {
            throw std::runtime_error("block " + std::to_string(i) + " does not hold what was written");
        }
    }
    std::cout << "   all " << BLOCKS << " blocks are what was written" << std::endl;
}

std::string findDisk(CDiskScannerHandler& scanner, std::string lunId)
{
    step("Rescan this host and find the disk");
    const std::string path = scanner.scanLunAfterAttach(lunId);
    if (path.empty()) {
        throw std::runtime_error("the disk was not found: see the run log");
    }
    std::cout << "   " << path << std::endl;
    return path;
}

void mainJob(CDeviceManager& array, const std::string& pool, const std::string& initiator)
{
    step("Create a LUN of 64 MiB");
    LunMO wanted;
    wanted.NAME = "main_job_" + std::to_string(getpid());
    wanted.PARENTID = pool;
    wanted.CAPACITY = 64UL * 1024 * 1024;
    const LunMO lun = handlerOf<CLunHandler>(array, LUN_HANDLER).createLun(wanted);
    std::cout << "   LUN " << lun.ID << ", WWN " << lun.WWN << std::endl;

    CDiskAttachHandler& attach = handlerOf<CDiskAttachHandler>(array, DISKATTACH_HANDLER);
    CDiskScannerHandler& scanner = handlerOf<CDiskScannerHandler>(array, DISKSCANNER_HANDLER);
    step("Attach it to " + initiator);
    attach.attachLunToHost(lun.ID, initiator, "127.0.0.1");

    useDisk(findDisk(scanner, lun.ID));

    step("Remove the device from this host");
    std::string id = lun.ID;
    scanner.scanLunBeforeDetach(id);
    step("Detach the LUN");
    attach.detachLunFromHost(lun.ID, initiator);
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... main_job ADDRESS PORT USER POOL-ID INITIATOR-NAME\n";
        return 2;
    }
    CDeviceManager* const array = CDeviceManager::getInstance(3, 500000);
    int result = 1;
    step("Log in");
    if (array->loginDevice(argv[1], static_cast<unsigned int>(std::strtoul(argv[2], nullptr, 10)), argv[3],
                           password, USERTYPE_LOCAL)) {
        try {
            mainJob(*array, argv[4], argv[5]);
            result = 0;
        } catch (const std::exception& e) {
            std::cerr << "   " << e.what() << std::endl;
        }
        step("Log out");
        array->logoutDevice();
    }
    CDeviceManager::releaseInstance(array);
    return result;
}

// The main job of a backup application: make a LUN a disk of this host, write and read it, and take
// everything away again. Needs root, and a host whose iSCSI initiator is logged in to the array.

#include <tessel/Array.h>
#include <tessel/LocalDisk.h>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using ovra::tessel::Array;
using ovra::tessel::HostInitiator;
using ovra::tessel::LocalDisk;
using ovra::tessel::StorageObject;

namespace {

const ssize_t BLOCK = 4096;
const size_t BLOCKS = 256;

void step(const std::string& text)
{
    std::cout << "\n== " << text << std::endl;
}

/** An open device, past the page cache: what is read is what the disk holds. */
class Device
{
public:
    explicit Device(const std::string& path) : m_fd(open(path.c_str(), O_RDWR | O_DIRECT | O_CLOEXEC))
    {
        if (m_fd < 0) {
            throw std::runtime_error("cannot open " + path + ": are you root?");
        }
    }
    ~Device() { close(m_fd); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    void write(size_t index)
    {
        fill(index);
        check(pwrite(m_fd, m_block, BLOCK, offset(index)) == BLOCK, "write");
    }
    bool holds(size_t index)
    {
        check(pread(m_fd, m_block, BLOCK, offset(index)) == BLOCK, "read");
        const std::vector<unsigned char> read(m_block, m_block + BLOCK);
        fill(index);
        return std::equal(read.begin(), read.end(), m_block);
    }
    void flush() { check(fsync(m_fd) == 0, "flush"); }

private:
    static off_t offset(size_t index) { return static_cast<off_t>(BLOCK * index); }
    void fill(size_t index)
    {
        for (ssize_t i = 0; i < BLOCK; ++i) {
            m_block[i] = (index * 31 + i * 7) % 256;
        }
    }
    static void check(bool done, const char* what)
    {
        if (!done) {
            throw std::runtime_error(std::string("cannot ") + what + " the device");
        }
    }

    int m_fd;
    alignas(BLOCK) unsigned char m_block[BLOCK] = {}; // as reads and writes past the cache need it
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

void mainJob(const Array& array, const std::string& pool, const std::string& initiator)
{
    step("Create a LUN of 64 MiB");
    LunMO wanted;
    wanted.NAME = "main_job_" + std::to_string(getpid());
    wanted.PARENTID = pool;
    wanted.CAPACITY = 64UL * 1024 * 1024;
    const LunMO lun = array.luns().createLun(wanted);
    std::cout << "   LUN " << lun.ID << ", WWN " << lun.WWN << std::endl;

    step("Make it a disk of this host");
    const StorageObject volume = StorageObject::lun(lun.ID);
    const HostInitiator host = HostInitiator::iscsi(initiator);
    LocalDisk disk = LocalDisk::attach(array, volume, host);
    std::cout << "   " << disk.path() << ", " << disk.size() << " bytes" << std::endl;

    useDisk(disk.path());

    step("Take the disk away again");
    disk.release();
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... main_job ADDRESS PORT USER POOL-ID INITIATOR-NAME\n";
        return 2;
    }
    try {
        Array array; // ends the session with its scope, whatever happens
        step("Log in");
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        mainJob(array, argv[4], argv[5]);
        step("Log out");
        return array.logout() ? 0 : 1;
    } catch (const std::exception& e) {
        std::cerr << "   " << e.what() << std::endl;
        return 1;
    }
}

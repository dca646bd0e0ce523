#include "ovra/disk/ReadIdentity.h"

#include "ovra/disk/Names.h"
#include "ovra/disk/Nodes.h"

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ovra::disk {
namespace {

constexpr unsigned char INQUIRY = 0x12;
constexpr unsigned char VITAL_PRODUCT_DATA = 0x01;
constexpr unsigned char DEVICE_IDENTIFICATION = 0x83;
constexpr unsigned char ALLOCATION_LENGTH = 0xFF;
constexpr unsigned int LIMIT_MS = 60000;

/** An open device; not inherited by the commands that other threads start meanwhile. */
class OpenDevice
{
public:
    explicit OpenDevice(const std::string& path) : m_fd(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC))
    {
        if (m_fd < 0) {
            m_fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        }
    }
    ~OpenDevice()
    {
        if (m_fd >= 0) {
            close(m_fd);
        }
    }
    OpenDevice(const OpenDevice&) = delete;
    OpenDevice& operator=(const OpenDevice&) = delete;

    int descriptor() const { return m_fd; }

private:
    int m_fd;
};

} // namespace

int inquire(int descriptor, unsigned char page, unsigned char* buffer)
{
    unsigned char command[6] = {INQUIRY, VITAL_PRODUCT_DATA, page, 0x00, ALLOCATION_LENGTH, 0x00};
    unsigned char sense[64] = {};
    sg_io_hdr request = {};
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_FROM_DEV;
    request.cmd_len = sizeof(command);
    request.mx_sb_len = sizeof(sense);
    request.dxfer_len = PAGE_BYTES;
    request.dxferp = buffer;
    request.cmdp = command;
    request.sbp = sense;
    request.timeout = LIMIT_MS;
    return ioctl(descriptor, SG_IO, &request) == 0 && request.status == 0 ? 0 : -1;
}

std::optional<std::string> readPage83(const std::string& path)
{
    if (!canAnswer(lastName(path))) {
        return std::nullopt;
    }
    const OpenDevice device(path);
    unsigned char page[PAGE_BYTES] = {};
    if (device.descriptor() < 0 || inquire(device.descriptor(), DEVICE_IDENTIFICATION, page) != 0) {
        return std::nullopt;
    }
    return std::string(page, page + PAGE_BYTES);
}

DiskIdentity readIdentity(const std::string& path)
{
    const std::optional<std::string> page = readPage83(path);
    return page ? parsePage83(*page).value_or(DiskIdentity()) : DiskIdentity();
}

} // namespace ovra::disk

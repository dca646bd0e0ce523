// Asks a device who it is: the INQUIRY page of device identification.

#include "host/DiskScannerHandlerImpl.h"
#include "session/Log.h"

#include <ovra/bounds/bounds.h>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace ovra::tessel;

namespace {

const unsigned int PAGE_BYTES = 256;
const unsigned char INQUIRY = 0x12;
const unsigned char VITAL_PRODUCT_DATA = 0x01;
const unsigned char DEVICE_IDENTIFICATION = 0x83;
const unsigned char ALLOCATION_LENGTH = 0xFF;
const unsigned int INQUIRY_LIMIT_MS = 60000;

/** An open device; not inherited by the commands that other threads start meanwhile. */
class OpenDevice
{
public:
    explicit OpenDevice(const std::string& path) : m_fd(open(path.c_str(), O_RDWR | O_NONBLOCK))
    {
        if (m_fd < 0) {
            m_fd = open(path.c_str(), O_RDONLY | O_NONBLOCK);
        }
        if (m_fd >= 0) {
            fcntl(m_fd, F_SETFD, FD_CLOEXEC);
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

int CDiskScannerHandlerImpl::GetDiskPage(int fd, unsigned char page, unsigned char* buffer)
{
    if (buffer == nullptr) {
        COMMLOG(OS_LOG_INFO, "aucBuffer is NULL! GetDiskPage");
        return -1;
    }
    unsigned char command[6] = {INQUIRY, VITAL_PRODUCT_DATA, page, 0x00, ALLOCATION_LENGTH, 0x00};
    unsigned char sense[64];
    sg_io_hdr request;
    if (memset_s(sense, sizeof(sense), 0, sizeof(sense)) != 0 ||
        memset_s(&request, sizeof(request), 0, sizeof(request)) != 0) {
        return -1;
    }
    request.interface_id = 'S';
    request.dxfer_direction = SG_DXFER_FROM_DEV;
    request.cmd_len = sizeof(command);
    request.mx_sb_len = sizeof(sense);
    request.dxfer_len = PAGE_BYTES;
    request.dxferp = buffer;
    request.cmdp = command;
    request.sbp = sense;
    request.timeout = INQUIRY_LIMIT_MS;
    return ioctl(fd, SG_IO, &request) == 0 && request.status == 0 ? 0 : -1;
}

int CDiskScannerHandlerImpl::GetDisk83Page(std::string& devicePath, std::string& wwnOut,
                                           std::string& lunIdOut)
{
    if (devicePath.empty()) {
        COMMLOG(OS_LOG_INFO, "strDevice is empty! GetDisk83Page");
        return -1;
    }
    const OpenDevice device(devicePath);
    if (device.descriptor() < 0) {
        return -1;
    }
    unsigned char page[PAGE_BYTES] = {};
    const int result = GetDiskPage(device.descriptor(), DEVICE_IDENTIFICATION, page);
    return result == 0 ? ParseDisk83Page(page, wwnOut, lunIdOut) : result;
}

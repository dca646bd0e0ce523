#include "ovra/disk/ReadIdentity.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Names.h"
#include "ovra/disk/Nodes.h"

#include <cerrno>
#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace ovra::disk {
namespace {

constexpr unsigned char INQUIRY = 0x12;
constexpr unsigned char STANDARD = 0x00;
constexpr unsigned char VITAL_PRODUCT_DATA = 0x01;
constexpr unsigned char DEVICE_IDENTIFICATION = 0x83;
constexpr unsigned char ALLOCATION_LENGTH = 0xFF;
constexpr unsigned int LIMIT_MS = 60000;
constexpr unsigned char CHECK_CONDITION = 0x02;
constexpr unsigned char RESPONSE_CODE = 0x7F;
constexpr unsigned char DESCRIPTOR_FORMAT = 0x72;
constexpr unsigned char SENSE_KEY = 0x0F;
constexpr unsigned char ILLEGAL_REQUEST = 0x05;
constexpr unsigned char UNIT_NOT_SUPPORTED = 0x25;

/** How a device is opened to be asked. */
enum class Opened
{
    READ_ONLY,
    READ_WRITE ///< read-only where that is refused
};

/** An open device; not inherited by the commands that other threads start meanwhile. */
class OpenDevice
{
public:
    OpenDevice(const std::string& path, Opened how)
        : m_fd(how == Opened::READ_WRITE ? open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC) : -1)
    {
        if (m_fd < 0) {
            m_fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        }
        m_error = m_fd < 0 ? errno : 0;
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
    int error() const { return m_error; } ///< errno; 0 when it is open

private:
    int m_fd;
    int m_error;
};

/** One INQUIRY, and what came of it. */
class Inquiry
{
public:
    Inquiry(int descriptor, unsigned char kind, unsigned char page, unsigned char* buffer)
    {
        unsigned char command[6] = {INQUIRY, kind, page, 0x00, ALLOCATION_LENGTH, 0x00};
        m_request.interface_id = 'S';
        m_request.dxfer_direction = SG_DXFER_FROM_DEV;
        m_request.cmd_len = sizeof(command);
        m_request.mx_sb_len = sizeof(m_sense);
        m_request.dxfer_len = PAGE_BYTES;
        m_request.dxferp = buffer;
        m_request.cmdp = command;
        m_request.sbp = m_sense;
        m_request.timeout = LIMIT_MS;
        m_isSent = ioctl(descriptor, SG_IO, &m_request) == 0;
        m_error = m_isSent ? 0 : errno;
    }

    bool isGood() const { return m_isSent && m_request.status == 0; }
    int error() const { return m_error; } ///< errno; 0 when it was sent

    /** The sense data say LOGICAL UNIT NOT SUPPORTED. */
    bool saysNoUnit() const
    {
        // Fixed format, or that of descriptors: where the key and the additional code stand.
        const bool isFixed = (m_sense[0] & RESPONSE_CODE) < DESCRIPTOR_FORMAT;
        const unsigned char key = m_sense[isFixed ? 2 : 1] & SENSE_KEY;
        const unsigned char* const code = &m_sense[isFixed ? 12 : 2];
        return m_isSent && m_request.status == CHECK_CONDITION && key == ILLEGAL_REQUEST &&
               code[0] == UNIT_NOT_SUPPORTED && code[1] == 0;
    }

private:
    sg_io_hdr m_request = {};
    unsigned char m_sense[64] = {};
    bool m_isSent;
    int m_error;
};

/** The first byte of an answer tells whether a unit is connected there. */
bool saysNoUnit(char first)
{
    const int qualifier = static_cast<unsigned char>(first) >> 5U;
    return qualifier == 1 || qualifier == 3;
}

/** What came of a question. */
struct Asked
{
    std::string page; ///< 0x83; empty when it was not given
    int error = 0;    ///< errno of what was not done, a device that is known to be dead left aside
};

Asked askPage83(const std::string& path, Opened how)
{
    if (!canAnswer(lastName(path))) {
        return {};
    }
    const OpenDevice device(path, how);
    if (device.descriptor() < 0) {
        return {"", device.error()};
    }
    unsigned char page[PAGE_BYTES] = {};
    const Inquiry inquiry(device.descriptor(), VITAL_PRODUCT_DATA, DEVICE_IDENTIFICATION, page);
    return {inquiry.isGood() ? std::string(page, page + PAGE_BYTES) : "", inquiry.error()};
}

/** Throws where what was not done is nothing that a device answers, but what this process lacks, or may not.
 */
void requireAsked(const std::string& path, int error)
{
    for (const int own : {EMFILE, ENFILE, ENOMEM, EACCES, EPERM}) {
        if (error == own) {
            throw Unreadable(path, error);
        }
    }
}

/** Page 0x83 of a device that is asked; empty when it does not answer. */
std::string pageThere(const std::string& path)
{
    const Asked asked = askPage83(path, Opened::READ_ONLY);
    requireAsked(path, asked.error);
    return asked.page;
}

DiskIdentity identityIn(const std::string& page)
{
    return page.empty() ? DiskIdentity() : parsePage83(page).value_or(DiskIdentity());
}

} // namespace

int inquire(int descriptor, unsigned char page, unsigned char* buffer)
{
    return Inquiry(descriptor, VITAL_PRODUCT_DATA, page, buffer).isGood() ? 0 : -1;
}

std::optional<std::string> readPage83(const std::string& path)
{
    const Asked asked = askPage83(path, Opened::READ_WRITE);
    return asked.page.empty() ? std::nullopt : std::make_optional(asked.page);
}

DiskIdentity readIdentity(const std::string& path)
{
    return identityIn(askPage83(path, Opened::READ_WRITE).page);
}

DiskIdentity askIdentity(const std::string& path)
{
    return identityIn(pageThere(path));
}

DiskAnswer askDisk(const std::string& path)
{
    DiskAnswer answer{pageThere(path), false};
    if (answer.page.empty() && canAnswer(lastName(path))) {
        const OpenDevice device(path, Opened::READ_ONLY);
        requireAsked(path, device.error());
        unsigned char data[PAGE_BYTES] = {};
        if (device.descriptor() >= 0) {
            const Inquiry standard(device.descriptor(), STANDARD, 0, data);
            answer.hasNoUnit =
                standard.isGood() ? saysNoUnit(static_cast<char>(data[0])) : standard.saysNoUnit();
        }
    } else if (!answer.page.empty() && saysNoUnit(answer.page[0])) {
        answer = {"", true};
    }
    return answer;
}

} // namespace ovra::disk

#include "host/DeviceRemoval.h"

#include "host/DeviceNames.h"
#include "host/DeviceUse.h"
#include "session/Log.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace ovra::tessel {

namespace {

/** Writes the disk's dirty pages back: once it is removed they are lost. */
void flush(const std::string& path, const std::string& device)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int error = fd < 0 || fsync(fd) != 0 ? errno : 0;
    if (fd >= 0) {
        close(fd);
    }
    if (error != 0) {
        COMMLOG(OS_LOG_WARN, "%s: data not yet written could not be written back before its removal: %s",
                device.c_str(), std::system_category().message(error).c_str());
    }
}

} // namespace

bool isReadyForRemoval(CDiskScannerHandlerImpl& scanner, const std::string& path, const std::string& device,
                       const std::function<bool(const DiskIdentity&)>& isWanted)
{
    for (const std::string& use : usesOf(lastName(device))) {
        COMMLOG(OS_LOG_WARN, "%s is removed while in use: %s", device.c_str(), use.c_str());
    }
    flush(path, device);
    if (isWanted(DiskIdentity(scanner, path))) {
        return true;
    }
    COMMLOG(OS_LOG_ERROR, "%s has changed or does not answer any more: it is not removed. Scan again.",
            device.c_str());
    return false;
}

} // namespace ovra::tessel

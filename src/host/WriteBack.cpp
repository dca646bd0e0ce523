#include "host/WriteBack.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace ovra::tessel {
namespace {

template <class WriteBack>
std::string onceOpen(const std::string& path, WriteBack writeBack)
{
    const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int error = fd < 0 || !writeBack(fd) ? errno : 0;
    if (fd >= 0) {
        close(fd);
    }
    return error == 0 ? "" : std::system_category().message(error);
}

} // namespace

std::string writeBackDevice(const std::string& path)
{
    return onceOpen(path, [](int fd) { return ioctl(fd, BLKFLSBUF, 0) == 0 && fsync(fd) == 0; });
}

std::string writeBackMount(const std::string& path)
{
    return onceOpen(path, [](int fd) { return syncfs(fd) == 0; });
}

} // namespace ovra::tessel

// The C library's functions that the scanner reaches the host by: the seam's while one lives, else the
// library's own.

#include "support/HostSeam.h"
#include "support/RecordingPlatform.h"

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/sem.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

/** The function that would have been called without this file; it is looked for once. */
template <auto Function>
auto next(const char* name)
{
    static const auto found = reinterpret_cast<decltype(Function)>(dlsym(RTLD_NEXT, name));
    return found;
}

/** Where a file stands for the program: below the seam's root for those of the kernel and of udev. */
std::string placeOf(const char* path)
{
    const HostSeam* const seam = HostSeam::active();
    for (const char* const folder : {"/sys/", "/proc/", "/dev/disk/", "/dev/mapper/"}) {
        if (seam != nullptr && std::strncmp(path, folder, std::strlen(folder)) == 0) {
            return seam->root + path;
        }
    }
    return path;
}

bool isDisk(const std::string& path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    return path.compare(0, 5, "/dev/") == 0 &&
           (name.compare(0, 2, "sd") == 0 || name.compare(0, 3, "dm-") == 0);
}

/** Whether no descriptor is left for a path; errno says so then. */
bool isOutOfReach(const char* path)
{
    const HostSeam* const seam = HostSeam::active();
    const bool result = seam != nullptr && (seam->hasNoDescriptors || seam->outOfReach == path);
    errno = result ? EMFILE : errno;
    return result;
}

bool isBroken(const char* path)
{
    const HostSeam* const seam = HostSeam::active();
    const bool result = seam != nullptr && seam->broken == path;
    errno = result ? EIO : errno;
    return result;
}

/** What stands for a file is read from memory, where the text of the seam is not that of a file. */
int openFile(const HostSeam* seam, const char* path, int flags, mode_t mode)
{
    if (isOutOfReach(path)) {
        return -1;
    }
    const auto file = seam != nullptr ? seam->files.find(path) : decltype(seam->files.begin())();
    if (seam == nullptr || file == seam->files.end()) {
        return next<&open>("open")(placeOf(path).c_str(), flags, mode);
    }
    const int text = memfd_create("file", MFD_CLOEXEC);
    pwrite(text, file->second.data(), file->second.size(), 0);
    return text;
}

} // namespace

extern "C" {

int system(const char* command)
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->system(command) : next<&system>("system")(command);
}

FILE* popen(const char* command, const char* mode)
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->popen(command) : next<&popen>("popen")(command, mode);
}

int pclose(FILE* stream)
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->pclose(stream) : next<&pclose>("pclose")(stream);
}

int access(const char* path, int mode) noexcept
{
    HostSeam* const seam = HostSeam::active();
    if (seam != nullptr && isDisk(path)) {
        return seam->access(path);
    }
    return isBroken(path) ? -1 : next<&access>("access")(placeOf(path).c_str(), mode);
}

DIR* opendir(const char* path)
{
    if (isOutOfReach(path)) {
        return nullptr;
    }
    return next<&opendir>("opendir")(placeOf(path).c_str());
}

ssize_t readlink(const char* path, char* target, size_t size) noexcept
{
    return isBroken(path) ? -1 : next<&readlink>("readlink")(placeOf(path).c_str(), target, size);
}

int statx(int folder, const char* path, int flags, unsigned int mask, struct statx* file) noexcept
{
    const HostSeam* const seam = HostSeam::active();
    const auto device = seam != nullptr ? seam->devices.find(path) : decltype(seam->devices.begin())();
    if (seam != nullptr && seam->lacking == path) {
        errno = ENOMEM;
        return -1;
    }
    if (seam == nullptr || device == seam->devices.end()) {
        return next<&statx>("statx")(folder, placeOf(path).c_str(), flags, mask, file);
    }
    file->stx_mode = S_IFBLK | 0660;
    std::tie(file->stx_rdev_major, file->stx_rdev_minor) = device->second;
    return 0;
}

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const HostSeam* const seam = HostSeam::active();
    const int result = next<&clock_gettime>("clock_gettime")(clock, time);
    time->tv_sec += seam != nullptr && clock == CLOCK_MONOTONIC ? seam->clock : 0;
    return result;
}

unsigned int sleep(unsigned int seconds)
{
    if (HostSeam::active() == nullptr) {
        return next<&sleep>("sleep")(seconds);
    }
    RecordingPlatform::get().note("sleep: " + std::to_string(seconds));
    return 0;
}

int usleep(useconds_t microseconds)
{
    const HostSeam* const seam = HostSeam::active();
    if (seam == nullptr) {
        return next<&usleep>("usleep")(microseconds);
    }
    RecordingPlatform::get().note("usleep: " + std::to_string(microseconds));
    if (seam->onUsleep) {
        seam->onUsleep();
    }
    return 0;
}

/** What waits for a cancellation is a pause too; whether there is one is asked of the library. */
int poll(pollfd* polled, nfds_t count, int milliseconds)
{
    const HostSeam* const seam = HostSeam::active();
    if (seam == nullptr || milliseconds == 0) {
        return next<&poll>("poll")(polled, count, milliseconds);
    }
    RecordingPlatform::get().note("poll: " + std::to_string(milliseconds));
    if (seam->onUsleep) {
        seam->onUsleep();
    }
    return next<&poll>("poll")(polled, count, 0);
}

int open(const char* path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    HostSeam* const seam = HostSeam::active();
    if (seam == nullptr || !isDisk(path)) {
        return openFile(seam, path, flags, mode);
    }
    return seam->open(path, flags);
}

int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr && seam->owns(fd) ? seam->ioctl(fd, request, argument)
                                             : next<&ioctl>("ioctl")(fd, request, argument);
}

int fsync(int fd)
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr && seam->owns(fd) ? seam->fsync(fd) : next<&fsync>("fsync")(fd);
}

int syncfs(int fd) noexcept
{
    if (HostSeam::active() == nullptr) {
        return next<&syncfs>("syncfs")(fd);
    }
    char path[4096] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(fd);
    RecordingPlatform::get().note(
        std::string("syncfs: ") +
        (next<&readlink>("readlink")(link.c_str(), path, sizeof(path) - 1) > 0 ? path : "unknown"));
    return 0;
}

int semget(key_t key, int count, int flags) noexcept
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->semget(key, count, flags) : next<&semget>("semget")(key, count, flags);
}

int semop(int id, sembuf* operations, size_t count) noexcept
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->semop(id, operations->sem_op, operations->sem_flg)
                           : next<&semop>("semop")(id, operations, count);
}

int semtimedop(int id, sembuf* operations, size_t count, const timespec* limit) noexcept
{
    HostSeam* const seam = HostSeam::active();
    return seam != nullptr ? seam->semop(id, operations->sem_op, operations->sem_flg)
                           : next<&semtimedop>("semtimedop")(id, operations, count, limit);
}

int semctl(int id, int number, int command, ...) noexcept
{
    va_list arguments;
    va_start(arguments, command);
    const long value = va_arg(arguments, long);
    va_end(arguments);
    HostSeam* const seam = HostSeam::active();
    if (seam != nullptr && number != 0) { // each set has one semaphore
        errno = EINVAL;
        return -1;
    }
    return seam != nullptr ? seam->semctl(id, command, value)
                           : next<&semctl>("semctl")(id, number, command, value);
}

} // extern "C"

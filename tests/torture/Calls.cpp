// The calls of the system that the libraries make: the C library's, but that one of them fails where that is
// planned.

#include "Faults.h"
#include "StubHost.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/sem.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

using torture::failsCall;

namespace {

constexpr bool INTERRUPTIBLE = true;

/** The function that would have been called without this file. */
template <class Function>
Function* next(const char* name, Function*)
{
    const torture::Aside aside;
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

mode_t modeIn(int flags, va_list arguments)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

} // namespace

extern "C" {

int socket(int domain, int type, int protocol) noexcept
{
    return failsCall(EMFILE) ? -1 : next("socket", &socket)(domain, type, protocol);
}

int socketpair(int domain, int type, int protocol, int* ends) noexcept
{
    return failsCall(EMFILE) ? -1 : next("socketpair", &socketpair)(domain, type, protocol, ends);
}

int connect(int fd, const sockaddr* address, socklen_t size)
{
    return failsCall(ECONNREFUSED, INTERRUPTIBLE) ? -1 : next("connect", &connect)(fd, address, size);
}

int getsockopt(int fd, int level, int option, void* value, socklen_t* size) noexcept
{
    return failsCall(ENOBUFS) ? -1 : next("getsockopt", &getsockopt)(fd, level, option, value, size);
}

ssize_t send(int fd, const void* bytes, size_t size, int flags)
{
    return failsCall(ECONNRESET, INTERRUPTIBLE) ? -1 : next("send", &send)(fd, bytes, size, flags);
}

ssize_t recv(int fd, void* bytes, size_t size, int flags)
{
    return failsCall(ECONNRESET, INTERRUPTIBLE) ? -1 : next("recv", &recv)(fd, bytes, size, flags);
}

int poll(pollfd* polled, nfds_t count, int milliseconds)
{
    return failsCall(ENOMEM, INTERRUPTIBLE) ? -1 : next("poll", &poll)(polled, count, milliseconds);
}

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return failsCall(EMFILE, INTERRUPTIBLE) ? -1 : next("open", &open)(path, flags, mode);
}

int openat(int directory, const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return failsCall(EMFILE, INTERRUPTIBLE) ? -1 : next("openat", &openat)(directory, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode)
{
    return failsCall(EMFILE, INTERRUPTIBLE) ? nullptr : next("fopen", &fopen)(path, mode);
}

FILE* fopen64(const char* path, const char* mode)
{
    return failsCall(EMFILE, INTERRUPTIBLE) ? nullptr : next("fopen64", &fopen64)(path, mode);
}

size_t fread(void* bytes, size_t size, size_t count, FILE* stream)
{
    return failsCall(EIO, INTERRUPTIBLE) ? 0 : next("fread", &fread)(bytes, size, count, stream);
}

ssize_t getdelim(char** line, size_t* size, int delimiter, FILE* stream)
{
    return failsCall(EIO, INTERRUPTIBLE) ? -1 : next("getdelim", &getdelim)(line, size, delimiter, stream);
}

ssize_t read(int fd, void* bytes, size_t size)
{
    return failsCall(EIO, INTERRUPTIBLE) ? -1 : next("read", &read)(fd, bytes, size);
}

ssize_t write(int fd, const void* bytes, size_t size)
{
    return failsCall(ENOSPC, INTERRUPTIBLE) ? -1 : next("write", &write)(fd, bytes, size);
}

int fflush(FILE* stream)
{
    return failsCall(EIO, INTERRUPTIBLE) ? EOF : next("fflush", &fflush)(stream);
}

int fsync(int fd)
{
    return failsCall(EIO, INTERRUPTIBLE) ? -1 : next("fsync", &fsync)(fd);
}

int flock(int fd, int operation) noexcept
{
    return failsCall(ENOLCK, INTERRUPTIBLE) ? -1 : next("flock", &flock)(fd, operation);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    return failsCall(ENOSPC) ? -1 : next("mkdir", &mkdir)(path, mode);
}

int stat(const char* path, struct stat* status) noexcept
{
    return failsCall(EIO)
               ? -1
               : next("stat", static_cast<int (*)(const char*, struct stat*)>(&stat))(path, status);
}

int fstat(int fd, struct stat* status) noexcept
{
    return failsCall(EIO) ? -1 : next("fstat", &fstat)(fd, status);
}

int access(const char* path, int mode) noexcept
{
    return failsCall(EIO) ? -1 : next("access", &access)(path, mode);
}

ssize_t readlink(const char* path, char* target, size_t size) noexcept
{
    return failsCall(EIO) ? -1 : next("readlink", &readlink)(path, target, size);
}

int statx(int folder, const char* path, int flags, unsigned int mask, struct statx* file) noexcept
{
    return failsCall(ENOMEM) ? -1 : next("statx", &statx)(folder, path, flags, mask, file);
}

DIR* opendir(const char* path)
{
    return failsCall(EMFILE) ? nullptr : next("opendir", &opendir)(path);
}

DIR* fdopendir(int fd)
{
    return failsCall(ENOMEM) ? nullptr : next("fdopendir", &fdopendir)(fd);
}

dirent* readdir(DIR* directory)
{
    return failsCall(EIO) ? nullptr : next("readdir", &readdir)(directory);
}

int pipe2(int* ends, int flags) noexcept
{
    return failsCall(EMFILE) ? -1 : next("pipe2", &pipe2)(ends, flags);
}

int eventfd(unsigned int count, int flags) noexcept
{
    return failsCall(EMFILE) ? -1 : next("eventfd", &eventfd)(count, flags);
}

FILE* popen(const char* command, const char* mode)
{
    return failsCall(EAGAIN) ? nullptr : next("popen", &popen)(command, mode);
}

int pclose(FILE* stream)
{
    if (failsCall(ECHILD)) { // somebody else has waited for it
        next("pclose", &pclose)(stream);
        errno = ECHILD;
        return -1;
    }
    return next("pclose", &pclose)(stream);
}

int system(const char* command)
{
    const int status = failsCall(EAGAIN) ? -1 : next("system", &system)(command);
    torture::letKernelWork();
    return status;
}

pid_t fork() noexcept
{
    return failsCall(EAGAIN) ? -1 : next("fork", &fork)();
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                   void* argument) noexcept
{
    return failsCall(EAGAIN) ? EAGAIN
                             : next("pthread_create", &pthread_create)(thread, attributes, start, argument);
}

int semget(key_t key, int count, int flags) noexcept
{
    return failsCall(ENOSPC) ? -1 : next("semget", &semget)(key, count, flags);
}

int semop(int id, sembuf* operations, size_t count) noexcept
{
    return failsCall(EIDRM, INTERRUPTIBLE) ? -1 : next("semop", &semop)(id, operations, count);
}

int semtimedop(int id, sembuf* operations, size_t count, const timespec* limit) noexcept
{
    return failsCall(EIDRM, INTERRUPTIBLE) ? -1
                                           : next("semtimedop", &semtimedop)(id, operations, count, limit);
}

int semctl(int id, int number, int command, ...) noexcept
{
    va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return failsCall(EACCES) ? -1 : next("semctl", &semctl)(id, number, command, argument);
}

int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    if (failsCall(EIO)) {
        return -1;
    }
    return torture::isDiskRequest(request) ? torture::answerAsDisk(fd, request, argument)
                                           : next("ioctl", &ioctl)(fd, request, argument);
}

int usleep(useconds_t microseconds)
{
    torture::letTimePass(static_cast<long>(microseconds) * 1000);
    return 0;
}

unsigned int sleep(unsigned int seconds)
{
    torture::letTimePass(static_cast<long>(seconds) * 1000000000);
    return 0;
}

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const int result = next("clock_gettime", &clock_gettime)(clock, time);
    if (clock == CLOCK_MONOTONIC) {
        torture::addPassedTime(*time);
    }
    return result;
}

time_t time(time_t* result) noexcept
{
    const time_t now = next("time", &time)(nullptr) + torture::passedSeconds();
    if (result != nullptr) {
        *result = now;
    }
    return now;
}

} // extern "C"

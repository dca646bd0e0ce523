// The C library's functions by which a process reaches its host: those of the simulated host within a process
// of it, else the library's own.

#include "simulation/Host.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <map>
#include <memory>
#include <scsi/sg.h>
#include <set>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/stat.h>
#include <unistd.h>

#define SIMULATED extern "C" __attribute__((visibility("default")))

using simulation::Host;
using simulation::Point;
using simulation::Time;

namespace {

constexpr int SEMAPHORE_ID = 41;
constexpr Time START = 1700000000 * simulation::SECOND; // when the host was started

/** The function that would have been called without this file. */
template <class Function>
Function* next(const char* name, Function*)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isHosts(const std::string& path)
{
    for (const char* const folder : {"/sys/", "/proc/", "/dev/", "/simulated/"}) {
        if (path.compare(0, std::strlen(folder), folder) == 0) {
            return true;
        }
    }
    return false;
}

/** The host, where the path is one of its files. */
Host* hostOf(const char* path)
{
    return isHosts(path) ? Host::ofRunning() : nullptr;
}

int failWith(int error)
{
    errno = error;
    return -1;
}

/** An open file or the output of a command. */
struct Stream
{
    std::string path;
    std::string text; ///< that is read
    size_t place = 0;
    int status = 0;
};

std::set<std::FILE*>& commands()
{
    static std::set<std::FILE*> open;
    return open;
}

ssize_t readStream(void* cookie, char* bytes, size_t size)
{
    auto& stream = *static_cast<Stream*>(cookie);
    const size_t count = stream.text.copy(bytes, size, std::min(stream.place, stream.text.size()));
    stream.place += count;
    return static_cast<ssize_t>(count);
}

int closeStream(void* cookie)
{
    delete static_cast<Stream*>(cookie);
    return 0;
}

/** The open files, by descriptor; those of disks are lower. */
std::map<int, Stream>& files()
{
    static std::map<int, Stream> open;
    return open;
}

/** Whether something is left of what a process may be in want of; errno says that it is not. */
bool isLeft(Host& host, unsigned simulation::Process::*wanting, int error)
{
    simulation::Process& process = host.scheduler.current();
    if (process.*wanting == 0) {
        return true;
    }
    --(process.*wanting);
    process.wasRefused = true;
    errno = error;
    return false;
}

bool hasDescriptor(Host& host)
{
    return isLeft(host, &simulation::Process::noDescriptors, EMFILE);
}

bool canStart(Host& host)
{
    return isLeft(host, &simulation::Process::noProcesses, EAGAIN);
}

int openFile(Host& host, const std::string& path, int flags)
{
    constexpr int FIRST_FILE = 2 * simulation::FIRST_DESCRIPTOR;
    const bool isRead = (flags & O_ACCMODE) == O_RDONLY;
    const auto text = isRead ? host.readFile(path) : std::make_optional<std::string>();
    if (!text || (!isRead && access(path.c_str(), F_OK) != 0)) {
        return failWith(ENOENT);
    }
    const int descriptor = files().empty() ? FIRST_FILE : files().rbegin()->first + 1;
    files()[descriptor] = {path, *text};
    return descriptor;
}

/** An open directory. */
struct Directory
{
    std::vector<std::string> names;
    size_t place = 0;
    dirent entry = {};
};

std::set<DIR*>& directories()
{
    static std::set<DIR*> open;
    return open;
}

} // namespace

SIMULATED int system(const char* command)
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("system", &system)(command);
    }
    return canStart(*host) ? host->run(std::string(command)) : -1;
}

SIMULATED FILE* popen(const char* command, const char* mode)
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("popen", &popen)(command, mode);
    }
    if (!hasDescriptor(*host) || !canStart(*host)) {
        return nullptr;
    }
    std::FILE* const stream =
        fopencookie(new Stream{"", host->print(command)}, mode, {readStream, nullptr, nullptr, closeStream});
    commands().insert(stream);
    return stream;
}

SIMULATED int pclose(FILE* stream)
{
    if (commands().erase(stream) == 0) {
        return next("pclose", &pclose)(stream);
    }
    std::fclose(stream);
    return 0;
}

SIMULATED int access(const char* path, int mode) noexcept
{
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("access", &access)(path, mode);
    }
    return host->scheduler.reach(Point::READ) && host->tree.exists(path) ? 0 : failWith(ENOENT);
}

SIMULATED int stat(const char* path, struct stat* info) noexcept
{
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("stat", static_cast<int (*)(const char*, struct stat*)>(&stat))(path, info);
    }
    info->st_mode = S_IFREG | 0755;
    return host->scheduler.reach(Point::READ) && host->tree.exists(path) ? 0 : failWith(ENOENT);
}

/** What an open file is: each node of the host has the name that its link shows. */
SIMULATED int statx(int folder, const char* path, int flags, unsigned int mask, struct statx* file) noexcept
{
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("statx", &statx)(folder, path, flags, mask, file);
    }
    file->stx_mode = S_IFREG;
    return host->scheduler.reach(Point::READ) && host->tree.exists(path) ? 0 : failWith(ENOENT);
}

SIMULATED ssize_t readlink(const char* path, char* target, size_t size) noexcept
{
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("readlink", &readlink)(path, target, size);
    }
    const auto text = host->scheduler.reach(Point::READ) ? host->tree.targetOf(path) : std::nullopt;
    return text ? static_cast<ssize_t>(text->copy(target, size)) : failWith(EINVAL);
}

SIMULATED DIR* opendir(const char* path)
{
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("opendir", &opendir)(path);
    }
    if (!hasDescriptor(*host)) {
        return nullptr;
    }
    auto directory = std::make_unique<Directory>();
    if (host->scheduler.reach(Point::READ)) {
        directory->names = host->tree.namesIn(path);
    }
    DIR* const stream = reinterpret_cast<DIR*>(directory.release());
    directories().insert(stream);
    return stream;
}

SIMULATED dirent* readdir(DIR* stream)
{
    if (directories().count(stream) == 0) {
        return next("readdir", &readdir)(stream);
    }
    auto& directory = *reinterpret_cast<Directory*>(stream);
    if (directory.place == directory.names.size()) {
        return nullptr;
    }
    const std::string& name = directory.names[directory.place++];
    directory.entry.d_name[name.copy(directory.entry.d_name, sizeof(directory.entry.d_name) - 1)] = '\0';
    return &directory.entry;
}

SIMULATED int closedir(DIR* stream)
{
    if (directories().erase(stream) == 0) {
        return next("closedir", &closedir)(stream);
    }
    delete reinterpret_cast<Directory*>(stream);
    return 0;
}

SIMULATED int open(const char* path, int flags, ...)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    Host* const host = hostOf(path);
    if (host == nullptr) {
        return next("open", &open)(path, flags, mode);
    }
    if (!hasDescriptor(*host)) {
        return -1;
    }
    if (std::strncmp(path, "/dev/", 5) != 0) {
        return openFile(*host, path, flags);
    }
    const int descriptor = host->openDevice(path);
    return descriptor < 0 ? failWith(ENOENT) : descriptor;
}

SIMULATED ssize_t read(int fd, void* bytes, size_t size)
{
    const auto file = fd >= simulation::FIRST_DESCRIPTOR ? files().find(fd) : files().end();
    return file == files().end() ? next("read", &read)(fd, bytes, size)
                                 : readStream(&file->second, static_cast<char*>(bytes), size);
}

SIMULATED ssize_t write(int fd, const void* bytes, size_t size)
{
    const auto file = fd >= simulation::FIRST_DESCRIPTOR ? files().find(fd) : files().end();
    if (file == files().end()) {
        return next("write", &write)(fd, bytes, size);
    }
    const std::string text(static_cast<const char*>(bytes), size);
    return Host::ofRunning()->writeFile(file->second.path, text) ? static_cast<ssize_t>(size) : failWith(EIO);
}

SIMULATED int close(int fd)
{
    if (fd >= simulation::FIRST_DESCRIPTOR && files().erase(fd) == 1) {
        return 0;
    }
    Host* const host = fd >= simulation::FIRST_DESCRIPTOR ? Host::ofRunning() : nullptr;
    if (host == nullptr) {
        return next("close", &close)(fd);
    }
    host->closeDevice(fd);
    return 0;
}

SIMULATED int ioctl(int fd, unsigned long request, ...) noexcept
{
    va_list arguments;
    va_start(arguments, request);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    Host* const host = fd >= simulation::FIRST_DESCRIPTOR ? Host::ofRunning() : nullptr;
    if (host == nullptr) {
        return next("ioctl", &ioctl)(fd, request, argument);
    }
    const std::string disk = host->scheduler.current().open[fd].name;
    if (request == BLKFLSBUF) {
        return host->flush(disk) ? 0 : failWith(EIO);
    }
    auto& inquiry = *static_cast<sg_io_hdr*>(argument);
    const Host::Answer answer = host->inquire(disk);
    if (answer.hasNoUnit) { // LOGICAL UNIT NOT SUPPORTED
        constexpr unsigned char SENSE[] = {0x70, 0, 5, 0, 0, 0, 0, 10, 0, 0, 0, 0, 0x25, 0};
        std::memcpy(inquiry.sbp, SENSE, sizeof(SENSE));
        inquiry.status = 2;
        return 0;
    }
    if (answer.page.empty()) {
        return failWith(EIO);
    }
    inquiry.status = 0;
    const bool isPage = inquiry.cmdp[1] != 0;
    answer.page.copy(static_cast<char*>(inquiry.dxferp), isPage ? answer.page.size() : 1);
    return 0;
}

SIMULATED int fsync(int fd)
{
    Host* const host = fd >= simulation::FIRST_DESCRIPTOR ? Host::ofRunning() : nullptr;
    if (host == nullptr) {
        return next("fsync", &fsync)(fd);
    }
    return host->flush(host->scheduler.current().open[fd].name) ? 0 : failWith(EIO);
}

SIMULATED int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("clock_gettime", &clock_gettime)(clock, time);
    }
    const Time now = host->scheduler.clock() + (clock == CLOCK_REALTIME ? START : 0);
    *time = {now / simulation::SECOND, now % simulation::SECOND * 1000};
    return 0;
}

SIMULATED time_t time(time_t* place) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("time", &time)(place);
    }
    return (host->scheduler.clock() + START) / simulation::SECOND;
}

SIMULATED pid_t getpid() noexcept
{
    Host* const host = Host::ofRunning();
    return host != nullptr ? host->scheduler.current().pid : next("getpid", &getpid)();
}

SIMULATED unsigned int sleep(unsigned int seconds)
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("sleep", &sleep)(seconds);
    }
    host->pause(seconds * simulation::SECOND);
    return 0;
}

SIMULATED int usleep(useconds_t microseconds)
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("usleep", &usleep)(microseconds);
    }
    host->pause(microseconds);
    return 0;
}

SIMULATED int semget(key_t key, int count, int flags) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("semget", &semget)(key, count, flags);
    }
    return host->scheduler.reach(Point::LOCK) ? SEMAPHORE_ID : failWith(EINVAL);
}

SIMULATED int semtimedop(int id, sembuf* operations, size_t count, const timespec* limit) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("semtimedop", &semtimedop)(id, operations, count, limit);
    }
    const Time longest =
        limit == nullptr ? simulation::NEVER : limit->tv_sec * simulation::SECOND + limit->tv_nsec / 1000;
    return host->semop(operations->sem_op, (operations->sem_flg & SEM_UNDO) != 0, longest);
}

SIMULATED int semop(int id, sembuf* operations, size_t count) noexcept
{
    return semtimedop(id, operations, count, nullptr);
}

SIMULATED int semctl(int id, int number, int command, ...) noexcept
{
    va_list arguments;
    va_start(arguments, command);
    const long value = va_arg(arguments, long);
    va_end(arguments);
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("semctl", &semctl)(id, number, command, value);
    }
    if (command == SETVAL) {
        host->setFree();
    }
    return command == GETPID ? host->lastHolder() : 0;
}

// Threads of a process, and what they wait for.

SIMULATED int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                             void* argument) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("pthread_create", &pthread_create)(thread, attributes, body, argument);
    }
    simulation::Process& process = host->scheduler.current();
    if (process.isKilled || !canStart(*host)) {
        return EAGAIN;
    }
    *thread = 1;
    host->scheduler.spawn(process, [body, argument] { body(argument); });
    return 0;
}

SIMULATED int pthread_detach(pthread_t thread) noexcept
{
    return Host::ofRunning() != nullptr ? 0 : next("pthread_detach", &pthread_detach)(thread);
}

/** Of this program there is one, where each process should have its own: whoever meets it waits. */
SIMULATED int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        static const auto lock = next("pthread_mutex_lock", &pthread_mutex_lock);
        return lock(mutex);
    }
    while (pthread_mutex_trylock(mutex) != 0) {
        host->scheduler.wait(host->scheduler.now() + 1, nullptr);
    }
    return 0;
}

SIMULATED int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock,
                                     const timespec* end)
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("pthread_cond_clockwait", &pthread_cond_clockwait)(condition, mutex, clock, end);
    }
    pthread_mutex_unlock(mutex);
    const bool isTold =
        host->waitForCondition(condition, end->tv_sec * simulation::SECOND + end->tv_nsec / 1000);
    pthread_mutex_lock(mutex);
    return isTold ? 0 : ETIMEDOUT;
}

SIMULATED int pthread_cond_broadcast(pthread_cond_t* condition) noexcept
{
    Host* const host = Host::ofRunning();
    if (host == nullptr) {
        return next("pthread_cond_broadcast", &pthread_cond_broadcast)(condition);
    }
    host->tellCondition(condition);
    return 0;
}

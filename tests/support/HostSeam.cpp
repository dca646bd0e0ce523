#include "support/HostSeam.h"

#include "support/RecordingPlatform.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <linux/fs.h>
#include <scsi/sg.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::atomic<HostSeam*> g_active{nullptr};

void note(const std::string& line)
{
    RecordingPlatform::get().note(line);
}

/** The next of a script; the last one stays. */
template <class T>
T take(std::deque<T>& script, const T& none)
{
    if (script.empty()) {
        return none;
    }
    const T next = script.front();
    if (script.size() > 1) {
        script.pop_front();
    }
    return next;
}

std::string temporaryDirectory()
{
    // Thousands of files of a few bytes: a disk takes some fifty times as long for them as memory.
    std::string pattern = access("/dev/shm", W_OK) == 0 ? "/dev/shm/" : "/tmp/";
    return mkdtemp(pattern.append("host-seam-XXXXXX").data());
}

long threadsOfProcess()
{
    return std::distance(fs::directory_iterator("/proc/self/task"), fs::directory_iterator());
}

int failWith(int error)
{
    errno = error;
    return -1;
}

} // namespace

std::vector<unsigned char> page83(const std::string& designatorHex)
{
    const size_t length = designatorHex.size() / 2;
    const unsigned char binary = 0x01, naa = 0x03;
    std::vector<unsigned char> page = {0,      0x83, 0, static_cast<unsigned char>(length + 4),
                                       binary, naa,  0, static_cast<unsigned char>(length)};
    for (size_t i = 0; i < length; ++i) {
        page.push_back(static_cast<unsigned char>(std::stoul(designatorHex.substr(2 * i, 2), nullptr, 16)));
    }
    page.resize(256);
    return page;
}

/// ThreadSanitizer starts a thread of its own with the first of the program: none is counted as the SDK's.
[[maybe_unused]] const bool hasHadAThread = [] {
    std::thread([] {}).join();
    return true;
}();

HostSeam::HostSeam() : m_threads(threadsOfProcess())
{
    files["/proc/self/mountinfo"] = "22 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n";
    files["/proc/swaps"] = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
    g_active = this;
}

HostSeam::~HostSeam()
{
    g_active = nullptr;
    fs::remove_all(root);
}

void HostSeam::waitForThreads()
{
    while (threadsOfProcess() > m_threads) {
        std::this_thread::yield();
    }
    // A count of threads orders nothing: what comes now is behind what they did.
    const std::lock_guard<std::mutex> lock(m_mutex);
}

std::string HostSeam::makePlace(const std::string& path)
{
    if (root == "/nonexistent") {
        root = temporaryDirectory();
    }
    fs::create_directories(fs::path(root + path).parent_path());
    return root + path;
}

void HostSeam::write(const std::string& path, const std::string& content)
{
    std::ofstream(makePlace(path), std::ios::binary) << content;
}

void HostSeam::link(const std::string& path, const std::string& target)
{
    fs::create_symlink(target, makePlace(path));
}

HostSeam* HostSeam::active()
{
    return g_active;
}

void HostSeam::exits(const std::string& command, std::deque<int> codes)
{
    for (int& code : codes) {
        code <<= 8;
    }
    ends(command, std::move(codes));
}

void HostSeam::ends(const std::string& command, std::deque<int> statuses)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ends[command] = std::move(statuses);
}

void HostSeam::prints(const std::string& command, std::deque<std::string> outputs)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_outputs[command] = std::move(outputs);
}

void HostSeam::cannotStart(const std::string& command, int call)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_failsFrom[command] = call;
}

SeamDisk& HostSeam::addDisk(const std::string& name, const std::string& designatorHex)
{
    write("/sys/block/" + name + "/dev", "8:" + std::to_string(16 * disks.size()) + "\n");
    write("/sys/block/" + name + "/device/state", "running\n");
    disks[name].pages = {page83(designatorHex)};
    return disks[name];
}

int HostSeam::system(const std::string& command)
{
    note("system: " + command);
    if (onSystem) {
        onSystem(command);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    return take(m_ends[command], 1 << 8);
}

std::FILE* HostSeam::popen(const std::string& command)
{
    note("popen: " + command);
    if (onPopen) {
        onPopen(command);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    const int call = m_started[command]++;
    const auto failing = m_failsFrom.find(command);
    if (failing != m_failsFrom.end() && call >= failing->second) {
        errno = EMFILE;
        return nullptr;
    }
    m_texts.push_back(take(m_outputs[command], std::string()));
    std::string& text = m_texts.back();
    std::FILE* const stream =
        text.empty() ? std::fopen("/dev/null", "r") : fmemopen(text.data(), text.size(), "r");
    m_streams[stream] = command;
    return stream;
}

int HostSeam::pclose(std::FILE* stream)
{
    note("pclose");
    const std::lock_guard<std::mutex> lock(m_mutex);
    const std::string command = m_streams.at(stream);
    m_streams.erase(stream);
    std::fclose(stream);
    return take(m_ends[command], 0);
}

int HostSeam::open(const std::string& path, int flags)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const bool writing = (flags & O_ACCMODE) != O_RDONLY;
    note("open: " + path + (writing ? " rw" : " ro"));
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto disk = disks.find(name);
    if (disk == disks.end()) {
        return failWith(ENOENT);
    }
    if (disk->second.openError != 0) {
        return failWith(disk->second.openError);
    }
    if (writing && disk->second.writeOpenError != 0) {
        return failWith(disk->second.writeOpenError);
    }
    const int fd = ::dup(STDERR_FILENO);
    m_open[fd] = name;
    return fd;
}

int HostSeam::access(const std::string& path)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto disk = disks.find(path.substr(path.rfind('/') + 1));
    return disk == disks.end() || disk->second.openError == ENOENT ? failWith(ENOENT) : 0;
}

bool HostSeam::owns(int fd)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_open.count(fd) != 0;
}

std::string HostSeam::nameOf(int fd)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_open.at(fd);
}

int HostSeam::ioctl(int fd, unsigned long request, void* argument)
{
    const std::string name = nameOf(fd);
    if (request == BLKFLSBUF) {
        note("flush: " + name);
        if (onFlush) {
            onFlush(name);
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        const int error = disks.at(name).flushError;
        return error == 0 ? 0 : failWith(error);
    }
    auto* const inquiry = static_cast<sg_io_hdr*>(argument);
    char page[8] = {};
    std::snprintf(page, sizeof(page), " %02x", inquiry->cmdp[2]);
    note("inquiry: " + name + page);
    if (onInquiry && onInquiry(name)) {
        return failWith(EIO);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    SeamDisk& disk = disks.at(name);
    const bool isStandard = inquiry->cmdp[1] == 0 && !disk.standard.empty();
    const bool isLimited = inquiry->timeout != 0; // else a disk that is silent would hold its caller for ever
    if (!isLimited || disk.inquiryError != 0 || (disk.pages.empty() && !isStandard)) {
        return failWith(disk.inquiryError != 0 ? disk.inquiryError : EIO);
    }
    const std::vector<unsigned char> bytes = isStandard ? disk.standard : take(disk.pages, {});
    std::copy(bytes.begin(), bytes.end(), static_cast<unsigned char*>(inquiry->dxferp));
    if (isStandard) {
        inquiry->status = 0;
        return 0;
    }
    std::copy(disk.sense.begin(), disk.sense.end(), inquiry->sbp);
    inquiry->status = disk.scsiStatus;
    return 0;
}

int HostSeam::fsync(int fd)
{
    note("fsync: " + nameOf(fd));
    return 0;
}

int HostSeam::semget(int key, int count, int flags)
{
    char mode[16] = {};
    std::snprintf(mode, sizeof(mode), "%04o", static_cast<unsigned int>(flags) & 0777u);
    note("semget: " + std::to_string(key) + " " + std::to_string(count) + " " + mode +
         ((flags & IPC_CREAT) != 0 ? " create" : "") + ((flags & IPC_EXCL) != 0 ? " excl" : ""));
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool isNew = key == IPC_PRIVATE || (semaphoreId < 0 && (flags & IPC_CREAT) != 0);
    if (semgetFails || (isNew && otherSets + (semaphoreId < 0 ? 0 : 1) >= mostSets)) {
        return failWith(ENOSPC);
    }
    if (key == IPC_PRIVATE) {
        ++otherSets;
        return nextSemaphoreId++;
    }
    if (semaphoreId < 0 && (flags & IPC_CREAT) == 0) {
        return failWith(ENOENT);
    }
    if (semaphoreId < 0) {
        semaphoreId = nextSemaphoreId;
        semaphoreValue = 0;
    }
    return semaphoreId;
}

int HostSeam::semop(int id, int change, int flags)
{
    note("semop: " + std::to_string(id) + " " + std::to_string(change) +
         ((flags & SEM_UNDO) != 0 ? " undo" : "") + ((flags & IPC_NOWAIT) != 0 ? " nowait" : ""));
    if (onSemop) {
        onSemop();
    }
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!semopErrors.empty()) {
        const int error = semopErrors.front();
        semopErrors.pop_front();
        return failWith(error);
    }
    m_freed.wait(lock, [&] { return semaphoreValue + change >= 0; });
    semaphoreValue += change;
    return 0;
}

int HostSeam::semctl(int id, int command, long argument)
{
    if (command == IPC_RMID) {
        note("semctl: " + std::to_string(id) + " IPC_RMID");
        --otherSets;
        return 0;
    }
    if (command == GETPID) {
        return semaphorePid;
    }
    if (command == IPC_STAT) {
        reinterpret_cast<semid_ds*>(argument)->sem_perm.uid = semaphoreUser;
        return 0;
    }
    const int value = static_cast<int>(argument);
    note("semctl: " + std::to_string(id) + " SETVAL " + std::to_string(value));
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (semctlFails) {
        return failWith(EACCES);
    }
    semaphoreValue = value;
    m_freed.notify_all();
    return 0;
}

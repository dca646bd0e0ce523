#include "DailyFile.h"

#include "Directories.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ovra::log {

namespace {

constexpr mode_t FILE_MODE = 0640;
constexpr int MOST_PARTS_TRIED = 100; // others may fill one before it is this process's turn

/// An open directory; -1 when it cannot be opened.
struct Descriptor
{
    explicit Descriptor(const std::string& directory)
        : number(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
    }
    ~Descriptor() { number >= 0 ? void(::close(number)) : void(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    const int number;
};

/// Keeps SIGXFSZ from the calling thread: a limit on file sizes costs a line, not the application.
class FileSizeSignalGuard
{
public:
    FileSizeSignalGuard()
    {
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    }

    ~FileSizeSignalGuard()
    {
        const int error = errno;
        const timespec atOnce = {};
        if (error == EFBIG && sigismember(&m_before, SIGXFSZ) == 0) {
            sigtimedwait(&m_signal, nullptr, &atOnce);
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        errno = error;
    }

    FileSizeSignalGuard(const FileSizeSignalGuard&) = delete;
    FileSizeSignalGuard& operator=(const FileSizeSignalGuard&) = delete;

private:
    sigset_t m_signal;
    sigset_t m_before;
};

/// A descriptor to append to a regular file, or -1 and errno.
int openForAppending(const std::string& path)
{
    // Neither a link that leads elsewhere nor a pipe that somebody else reads.
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY,
             FILE_MODE);
    if (descriptor < 0) {
        return -1;
    }
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        return descriptor;
    }
    close(descriptor);
    errno = EINVAL;
    return -1;
}

ssize_t writeOnce(int descriptor, std::string_view bytes)
{
    std::optional<FileSizeSignalGuard> guard;
    rlimit limit = {};
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur != RLIM_INFINITY) {
        guard.emplace();
    }
    ssize_t written = -1;
    do {
        errno = 0;
        written = write(descriptor, bytes.data(), bytes.size());
    } while (written < 0 && errno == EINTR);
    return written;
}

} // namespace

DailyFile::DailyFile(std::string prefix, Place place) : m_prefix(std::move(prefix)), m_place(std::move(place))
{
}

DailyFile::~DailyFile()
{
    close();
}

int DailyFile::prepare(const Date& date, bool isLookedAt)
{
    if (m_descriptor >= 0 && date == m_date && (!isLookedAt || stillThere()) &&
        (!m_place.limits.areSet() || m_process == getpid())) {
        return 0;
    }
    return open(date);
}

int DailyFile::write(const Date& date, std::string_view record, bool isLookedAt)
{
    if (const int error = prepare(date, isLookedAt)) {
        return error;
    }
    return m_place.limits.areSet() ? appendWithin(record) : append(record);
}

int DailyFile::append(std::string_view record)
{
    const ssize_t written =
        m_cutShort ? writeOnce(m_descriptor, "\n" + std::string(record)) : writeOnce(m_descriptor, record);
    if (written < 0) {
        return errno;
    }
    const size_t whole = record.size() + (m_cutShort ? 1 : 0);
    m_cutShort = static_cast<size_t>(written) < whole;
    return m_cutShort ? ENOSPC : 0;
}

int DailyFile::appendWithin(std::string_view record)
{
    const std::uint64_t bytes = record.size() + (m_cutShort ? 1 : 0);
    if (bytes > m_place.limits.ofFile()) {
        return EFBIG;
    }
    m_wanted = bytes;
    for (int part = 0; part < MOST_PARTS_TRIED; ++part) {
        {
            const FileLock lock(m_descriptor);
            if (!lock.isHeld()) {
                return EAGAIN;
            }
            if (holds(bytes)) {
                return append(record);
            }
        }
        if (const int error = open(m_date)) {
            return error;
        }
    }
    return EAGAIN;
}

bool DailyFile::holds(std::uint64_t bytes) const
{
    struct stat status = {};
    return fstat(m_descriptor, &status) == 0 && status.st_nlink > 0 &&
           static_cast<std::uint64_t>(status.st_size) + bytes <= m_place.limits.ofFile();
}

int DailyFile::open(const Date& date)
{
    close();
    m_firstError = openIn(m_place.directory, date);
    // A limit that is reached is kept: what has no room here does not go to another disk.
    const bool isFull = m_place.limits.areSet() && (m_firstError == ENOSPC || m_firstError == EAGAIN);
    return m_firstError == 0 || isFull ? m_firstError : openIn(m_place.userDirectory(), date);
}

int DailyFile::openIn(const std::string& directory, const Date& date)
{
    if (const int error = makeDirectories(directory)) {
        return error;
    }
    if (const int error = openPart(directory, date)) {
        return error;
    }
    m_process = getpid();
    m_date = date;
    m_directory = directory;
    noteUptime(m_descriptor);
    if (m_place.retentionDays > 0) {
        removeOldFiles(m_directory, m_prefix, provedDate(m_directory, date), m_place.retentionDays);
    }
    return 0;
}

int DailyFile::openPart(const std::string& directory, const Date& date)
{
    const auto tryPart = [&](unsigned part) {
        m_descriptor = openForAppending(directory + "/" + datedName(m_prefix, date, part));
        return m_descriptor < 0 ? errno : 0;
    };
    if (!m_place.limits.areSet()) {
        return tryPart(1);
    }
    const Descriptor folder(directory);
    const FileLock lock(folder.number);
    if (!lock.isHeld()) {
        return EAGAIN;
    }
    const unsigned last = lastPart(directory, m_prefix, date);
    if (last != 0) {
        const int error = tryPart(last);
        if (error != 0 || holds(m_wanted)) {
            return error;
        }
        close();
    }
    return makeRoom(directory, m_place.limits, date) ? tryPart(last + 1) : ENOSPC;
}

bool DailyFile::stillThere() const
{
    // Somebody may have removed the file or its directory: what is written to it then is lost.
    struct stat status = {};
    return fstat(m_descriptor, &status) == 0 && status.st_nlink > 0;
}

void DailyFile::close()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
    m_descriptor = -1;
    m_cutShort = false;
    m_directory.clear();
}

} // namespace ovra::log

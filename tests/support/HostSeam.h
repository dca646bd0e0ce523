#ifndef SUPPORT_HOSTSEAM_H
#define SUPPORT_HOSTSEAM_H

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

/** A SCSI disk as a test describes it. */
struct SeamDisk
{
    std::deque<std::vector<unsigned char>> pages; ///< page 0x83 of each INQUIRY in turn, the last one stays
    int openError = 0;                            ///< errno of every open
    int writeOpenError = 0;                       ///< errno of an open for writing
    int inquiryError = 0;                         ///< errno of every INQUIRY
    unsigned char scsiStatus = 0;
    std::vector<unsigned char> sense;    ///< beside a status that is not 0
    std::vector<unsigned char> standard; ///< data of the standard INQUIRY; empty: fails as the page does
    int flushError = 0;                  ///< errno of BLKFLSBUF
};

/**
 * While one lives, the host that the scanner works on is a script: system, popen, pclose, sleep, usleep, open
 * of disks, ioctl, fsync, System V semaphores and the kernel's and udev's files are answered from it and
 * noted in RecordingPlatform's journal: "system: COMMAND", "popen: COMMAND", "pclose", "sleep: 1", "usleep:
 * 5", "poll: 5" in the same places of a call that has a limit, "open: PATH rw" or "ro", "inquiry: sdc 83",
 * "flush: sdc", "fsync: sdc", "syncfs: PATH", "semget: 1235 1 0600 create" or
 * "... excl", "semop: ID -1 undo", "semctl: ID SETVAL 1". Nothing sleeps, and no device of this machine is
 * touched. /sys, /proc and /dev/disk are those below root; other files are opened as ever.
 */
class HostSeam
{
public:
    HostSeam();
    ~HostSeam();
    HostSeam(const HostSeam&) = delete;
    HostSeam& operator=(const HostSeam&) = delete;

    /** Waits for threads that were started since, and left to themselves: they use this host. */
    void waitForThreads();

    /** The exit codes of a command in turn, the last one stays; a command not named here ends with 1. */
    void exits(const std::string& command, std::deque<int> codes);
    /** What system() or pclose() returns for a command in turn, as waitpid() gives it, or -1. */
    void ends(const std::string& command, std::deque<int> statuses);
    /** What a command prints in turn, the last one stays; a command not named here prints nothing. */
    void prints(const std::string& command, std::deque<std::string> outputs);
    /** popen of this command fails from its n-th call on, counted from 0. */
    void cannotStart(const std::string& command, int call = 0);

    /** Called while a command of system() runs, on its thread. */
    std::function<void(const std::string& command)> onSystem;
    /** Called when a command is started by popen(). */
    std::function<void(const std::string& command)> onPopen;

    /** Called by an INQUIRY on the thread that asks; true: it fails, and touches this host no more. */
    std::function<bool(const std::string& disk)> onInquiry;
    /** Called when what was written to a device is written back. */
    std::function<void(const std::string& disk)> onFlush;

    bool hasNoDescriptors = false; ///< no file and no directory can be opened to be read
    std::string outOfReach;        ///< one that cannot, for want of a descriptor at that moment
    std::string broken;            ///< of which access() and readlink() fail with EIO
    std::string lacking;           ///< of which statx() fails with ENOMEM

    /** Called by usleep(), and by a poll() that waits. */
    std::function<void()> onUsleep;

    std::map<std::string, std::pair<unsigned, unsigned>> devices; ///< numbers of block devices, by path

    /** What is read, by path, in place of the file. */
    std::map<std::string, std::string> files;

    /** Writes a file below root. */
    void write(const std::string& path, const std::string& content);
    /** Makes a symbolic link below root. */
    void link(const std::string& path, const std::string& target);
    std::string root = "/nonexistent"; ///< a directory of this test's own, once something is in it

    std::map<std::string, SeamDisk> disks; ///< by name, e.g. sdc
    /** Adds a disk whose first designator is this one, running and used by nothing. */
    SeamDisk& addDisk(const std::string& name, const std::string& designatorHex);

    // The semaphore: as the kernel keeps it, with failures on request.
    int semaphoreId = -1; ///< of the set that exists; -1 none
    int semaphoreValue = 0;
    int nextSemaphoreId = 41;
    int otherSets = 0; ///< private ones that exist
    int mostSets = 32000;
    bool semgetFails = false;
    bool semctlFails = false;
    std::deque<int> semopErrors; ///< errno of the next calls
    std::function<void()> onSemop;
    int semaphorePid = 4711;
    unsigned int semaphoreUser = 1000;
    long clock = 0; ///< seconds that have passed besides those that have

    // The functions that stand in for the C library's.
    int system(const std::string& command);
    std::FILE* popen(const std::string& command);
    int pclose(std::FILE* stream);
    int open(const std::string& path, int flags);
    int access(const std::string& path); ///< of a disk
    int ioctl(int fd, unsigned long request, void* argument);
    int fsync(int fd);
    int semget(int key, int count, int flags);
    int semop(int id, int change, int flags);
    int semctl(int id, int command, long argument);
    bool owns(int fd);

    static HostSeam* active();

private:
    std::string nameOf(int fd);
    std::string makePlace(const std::string& path);

    const long m_threads;
    std::mutex m_mutex;
    std::condition_variable m_freed;
    std::map<std::string, std::deque<int>> m_ends;
    std::map<std::FILE*, std::string> m_streams; ///< the command of each
    std::map<std::string, std::deque<std::string>> m_outputs;
    std::map<std::string, int> m_failsFrom;
    std::map<std::string, int> m_started;
    std::deque<std::string> m_texts; ///< what open streams read from
    std::map<int, std::string> m_open;
};

/** Page 0x83 with one NAA designator, given in hexadecimal. */
std::vector<unsigned char> page83(const std::string& designatorHex);

#endif

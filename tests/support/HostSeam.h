#ifndef SUPPORT_HOSTSEAM_H
#define SUPPORT_HOSTSEAM_H

#include <condition_variable>
#include <cstdio>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

/** A SCSI disk as a test describes it. */
struct SeamDisk
{
    std::deque<std::vector<unsigned char>> pages; ///< page 0x83 of each INQUIRY in turn, the last one stays
    int openError = 0;                            ///< errno of every open
    int writeOpenError = 0;                       ///< errno of an open for writing
    int ioctlResult = 0;
    unsigned char scsiStatus = 0;
    int flushError = 0; ///< errno of fsync
};

/**
 * While one lives, the host that the scanner works on is a script: system, popen, pclose, sleep, usleep, open
 * of disks, ioctl, fsync, System V semaphores and some files of the kernel are answered from it and noted in
 * RecordingPlatform's journal: "system: COMMAND", "popen: COMMAND", "pclose", "sleep: 1", "usleep: 5", "open:
 * PATH rw" or "ro", "inquiry: sdc 83", "fsync: sdc", "semget: 1235 1 0600 create" or "... excl", "semop: ID
 * -1 undo", "semctl: ID SETVAL 1". Nothing sleeps, and no device of this machine is touched. Files that are
 * no disks are opened as ever.
 */
class HostSeam
{
public:
    HostSeam();
    ~HostSeam();
    HostSeam(const HostSeam&) = delete;
    HostSeam& operator=(const HostSeam&) = delete;

    /** The exit codes of a command in turn, the last one stays; a command not named here ends with 1. */
    void exits(const std::string& command, std::deque<int> codes);
    /** What a command prints in turn, the last one stays; a command not named here prints nothing. */
    void prints(const std::string& command, std::deque<std::string> outputs);
    /** popen of this command fails from its n-th call on, counted from 0. */
    void cannotStart(const std::string& command, int call = 0);

    /** Called while a command of system() runs, on its thread. */
    std::function<void(const std::string& command)> onSystem;
    /** Called when a command is started by popen(). */
    std::function<void(const std::string& command)> onPopen;

    /** What fopen reads, by path, in place of the file. */
    std::map<std::string, std::string> files;
    /** The entries below /sys/class/scsi_device that access() finds. */
    std::set<std::string> scsiDevices;

    std::map<std::string, SeamDisk> disks; ///< by name, e.g. sdc
    /** Adds a disk whose first designator is this one. */
    SeamDisk& addDisk(const std::string& name, const std::string& designatorHex);

    // The semaphore: as the kernel keeps it, with failures on request.
    int semaphoreId = -1; ///< of the set that exists; -1 none
    int semaphoreValue = 0;
    int nextSemaphoreId = 41;
    bool semgetFails = false;
    bool semctlFails = false;
    std::deque<int> semopErrors; ///< errno of the next calls

    // The functions that stand in for the C library's.
    int system(const std::string& command);
    std::FILE* popen(const std::string& command);
    int open(const std::string& path, int flags);
    int ioctl(int fd, void* argument);
    int fsync(int fd);
    int semget(int key, int count, int flags);
    int semop(int id, int change, int flags);
    int semctl(int id, int command, int value);
    bool owns(int fd);

    static HostSeam* active();

private:
    std::string nameOf(int fd);

    std::mutex m_mutex;
    std::condition_variable m_freed;
    std::map<std::string, std::deque<int>> m_exits;
    std::map<std::string, std::deque<std::string>> m_outputs;
    std::map<std::string, int> m_failsFrom;
    std::map<std::string, int> m_started;
    std::deque<std::string> m_texts; ///< what open streams read from
    std::map<int, std::string> m_open;
};

/** Page 0x83 with one NAA designator, given in hexadecimal. */
std::vector<unsigned char> page83(const std::string& designatorHex);

#endif

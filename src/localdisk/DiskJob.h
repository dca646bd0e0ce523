#ifndef LOCALDISK_DISKJOB_H
#define LOCALDISK_DISKJOB_H

#include <ovra/disk/ScsiDisks.h>
#include <tessel/LocalDisk.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ovra::tessel {

/** One object, this host, and what the array says of the two; or all disks that this host has of the array.
 */
struct DiskJob
{
    CDeviceManager* manager; ///< logged in
    StorageObject volume;    ///< of MO_HOST: no one object, but what a host of the array sees
    LocalDiskOptions options;
    std::string wwn;         ///< in lower case
    std::uint64_t bytes = 0; ///< 0: the array does not tell

    /** Reads the object. Throws when there is none, or when it has no WWN that a disk can have. */
    DiskJob(CDeviceManager& array, const StorageObject& object, const LocalDiskOptions& chosen);
    DiskJob(CDeviceManager& array, const std::string& hostID, const LocalDiskOptions& chosen);
    void read();

    std::string name() const; ///< "LUN 7", "host 3"
    std::chrono::seconds step() const { return std::chrono::seconds(options.stepSeconds); }
    [[noreturn]] void fail(const std::string& reason) const;
    /** Fails beside the Korvex product, which manages the devices of its host: none may come and go without
     * it.
     */
    void requireNoKorvex() const;
};

enum class Sizes
{
    PROVED, ///< another size than the array's is an error
    GROWN   ///< is taken over first
};

/** A point in time that a step ends at. */
class Deadline
{
public:
    explicit Deadline(unsigned seconds) : m_end(now() + std::chrono::seconds(seconds)) {}
    bool isOver() const { return now() >= m_end; }
    /** A short pause, after which something may have changed. @return false when the time is up. Throws
     * CallEnded when the call ends in it. */
    bool pause() const;

private:
    using Time = std::chrono::nanoseconds; ///< since some moment in the past

    static Time now();

    Time m_end;
};

/** The names, with commas. */
std::string listed(const std::vector<std::string>& names);

/** "67108864 bytes" */
std::string bytesText(std::uint64_t bytes);

} // namespace ovra::tessel

#endif

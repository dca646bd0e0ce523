#ifndef SIMULATOR_EXPORT_DISKFILES_H
#define SIMULATOR_EXPORT_DISKFILES_H

#include "model/Object.h"

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>

namespace arraysim {

/** "lun_7" or "snapshot_7". */
std::string diskName(const ObjectKey& lunOrSnapshot);

/**
 * The files that hold what is on LUNs and snapshots. A copy is begun and finished in two steps: between them
 * the caller holds no lock, and whoever needs the copy waits for it. Thread-safe.
 */
class DiskFiles
{
public:
    using Path = std::filesystem::path;

    /** Makes the directory, and removes files of it whose objects are gone, and halves of copies. */
    DiskFiles(Path directory, const std::function<bool(const std::string& diskName)>& isKnown);

    Path fileOf(const ObjectKey& disk) const { return m_directory / diskName(disk); }
    /** Begins a copy of a LUN's data for a snapshot. @return what does it, and never throws */
    std::function<void()> beginCopy(const ObjectKey& lun, const ObjectKey& snapshot, std::uintmax_t size,
                                    const std::function<void(const std::string&)>& tellFailure);
    /** Waits for the copy to a disk, where one runs. */
    void awaitCopy(const ObjectKey& disk);
    /** Takes the file of a disk out of sight at once. @return what removes it, and never throws */
    std::function<void()> discard(const ObjectKey& disk);

private:
    void finishCopy(const ObjectKey& snapshot, unsigned long number, const Path& part);

    const Path m_directory;
    std::mutex m_mutex;
    std::condition_variable m_finished;
    std::map<ObjectKey, unsigned long> m_copies; ///< the number of the copy that runs for a disk
    unsigned long m_lastNumber = 0;
};

} // namespace arraysim

#endif

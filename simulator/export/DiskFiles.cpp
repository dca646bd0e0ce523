#include "export/DiskFiles.h"

#include "base/Text.h"
#include "export/DataCopy.h"

#include <system_error>

namespace fs = std::filesystem;

namespace arraysim {

std::string diskName(const ObjectKey& lunOrSnapshot)
{
    return (lunOrSnapshot.first == Type::LUN ? "lun_" : "snapshot_") + lunOrSnapshot.second;
}

namespace {

/** Whether a file is of those that stand for a disk, or for one that comes or goes. */
bool isOurs(const std::string& name)
{
    const std::string kind = name.substr(0, name.find('_') + 1);
    const std::string number = name.substr(kind.size());
    return (kind == "lun_" || kind == "snapshot_" || kind == "copy_" || kind == "gone_") && decimal(number);
}

} // namespace

DiskFiles::DiskFiles(Path directory, const std::function<bool(const std::string& diskName)>& isKnown)
    : m_directory(std::move(directory))
{
    fs::create_directories(m_directory);
    std::vector<Path> stale;
    for (const auto& entry : fs::directory_iterator(m_directory)) {
        const std::string name = entry.path().filename();
        if (entry.is_regular_file() && isOurs(name) && !isKnown(name)) {
            stale.push_back(entry.path());
        }
    }
    for (const auto& file : stale) {
        fs::remove(file);
    }
}

std::function<void()> DiskFiles::beginCopy(const ObjectKey& lun, const ObjectKey& snapshot,
                                           std::uintmax_t size,
                                           const std::function<void(const std::string&)>& tellFailure)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const unsigned long number = ++m_lastNumber;
    m_copies[snapshot] = number;
    const Path part = m_directory / ("copy_" + std::to_string(number));
    return [this, lun, snapshot, size, tellFailure, number, part] {
        try {
            if (fs::exists(fileOf(lun))) {
                copyData(fileOf(lun), part);
            }
            makeSparse(part, size);
        } catch (const std::exception& failure) {
            std::error_code ignored;
            fs::remove(part, ignored);
            tellFailure(failure.what());
        }
        finishCopy(snapshot, number, part);
    };
}

void DiskFiles::finishCopy(const ObjectKey& snapshot, unsigned long number, const Path& part)
{
    std::error_code ignored;
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto running = m_copies.find(snapshot);
    if (running != m_copies.end() && running->second == number) {
        fs::rename(part, fileOf(snapshot), ignored);
        m_copies.erase(running);
    } else {
        fs::remove(part, ignored); // the snapshot was deleted meanwhile
    }
    m_finished.notify_all();
}

void DiskFiles::awaitCopy(const ObjectKey& disk)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_finished.wait(lock, [&] { return m_copies.count(disk) == 0; });
}

std::function<void()> DiskFiles::discard(const ObjectKey& disk)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_copies.erase(disk);
    m_finished.notify_all();
    const Path gone = m_directory / ("gone_" + std::to_string(++m_lastNumber));
    std::error_code none;
    fs::rename(fileOf(disk), gone, none);
    return [gone] {
        std::error_code ignored;
        fs::remove(gone, ignored);
    };
}

} // namespace arraysim

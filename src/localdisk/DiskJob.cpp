#include "localdisk/DiskJob.h"

#include "host/Korvex.h"
#include "job/Tries.h"
#include "session/CallsAtWork.h"
#include "session/LastFailure.h"
#include "storage/DiskKinds.h"

#include <ovra/disk/Names.h>

#include <algorithm>
#include <cctype>
#include <ctime>
#include <functional>

namespace ovra::tessel {
namespace {

constexpr unsigned int PAUSE_US = 50000;

std::string lowerOf(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

constexpr std::uint64_t UNKNOWN = UINT64_MAX;
constexpr std::uint64_t SECTOR = 512; // the unit in which the array tells the capacity of a snapshot

std::uint64_t bytesOf(const LunMO& lun)
{
    return lun.CAPACITY == UNKNOWN ? 0 : lun.CAPACITY;
}

std::uint64_t bytesOf(const SnapshotMO& snapshot)
{
    return snapshot.USERCAPACITY == UNKNOWN ? 0 : snapshot.USERCAPACITY * SECTOR;
}

} // namespace

DiskJob::DiskJob(CDeviceManager& array, const StorageObject& object, const LocalDiskOptions& chosen)
    : manager(&array), volume(object), options(chosen)
{
    if (volume.type != MO_LUN && volume.type != MO_SNAPSHOT) {
        throw notedFailure(FailureKind::ARGUMENT, "the object is no LUN and no snapshot! LocalDisk");
    }
    if (volume.id.empty()) {
        throw notedFailure(FailureKind::ARGUMENT, "the ID of the object is empty! LocalDisk");
    }
    read();
}

DiskJob::DiskJob(CDeviceManager& array, const std::string& hostID, const LocalDiskOptions& chosen)
    : manager(&array), volume{MO_HOST, hostID}, options(chosen)
{
}

void DiskJob::read()
{
    const Array array(*manager);
    withKind(volume.type, [&](auto kind) {
        using Kind = decltype(kind);
        const auto object = whileBusy(options.access, [&] {
            return std::invoke(Kind::GET, array.handler<typename Kind::Handler>(), volume.id);
        });
        if (object.ID != volume.id) {
            fail("the array has no such object");
        }
        wwn = lowerOf(object.WWN);
        bytes = bytesOf(object);
    });
    if (!disk::isPlainWwn(wwn)) {
        fail("its WWN [" + wwn + "] cannot be one of a disk; look at the object on the array");
    }
}

std::string DiskJob::name() const
{
    const std::string noun =
        volume.type == MO_HOST ? "host" : withKind(volume.type, [](auto kind) { return kind.NOUN; });
    return noun + " " + volume.id;
}

void DiskJob::fail(const std::string& reason) const
{
    throw OvraAPIException(name() + ": " + reason + "! LocalDisk");
}

void DiskJob::requireNoKorvex() const
{
    if (!mayRemoveDevices()) {
        fail("the Korvex product is installed on this host, or may be, and manages its disks itself: "
             "attach and scan with CDiskAttachHandler and CDiskScannerHandler");
    }
}

Deadline::Time Deadline::now()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + Time(time.tv_nsec);
}

bool Deadline::pause() const
{
    if (isOver()) {
        return false;
    }
    pauseOrEnd(PAUSE_US);
    return true;
}

std::string listed(const std::vector<std::string>& names)
{
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    return list;
}

std::string bytesText(std::uint64_t bytes)
{
    return std::to_string(bytes) + " bytes";
}

} // namespace ovra::tessel

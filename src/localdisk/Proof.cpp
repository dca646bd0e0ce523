#include "localdisk/Proof.h"

#include "host/Limited.h"
#include "localdisk/MapOfPaths.h"
#include "localdisk/Sight.h"
#include "session/Log.h"

#include <ovra/disk/Files.h>

#include <algorithm>

namespace ovra::tessel {
namespace {

constexpr unsigned MOST_TRIES = 5; ///< a process that was killed may leave that many disks that go yet

void readSizes(const DiskJob& job, const std::vector<std::string>& names)
{
    std::vector<std::function<void()>> steps;
    steps.reserve(names.size());
    for (const std::string& name : names) {
        steps.emplace_back([name] { disk::writeFile("/sys/block/" + name + "/device/rescan", "1"); });
    }
    doWithin(job.step(), steps);
}

/** Fails, unless it is for one of them that has gone. */
[[noreturn]] void failFor(const DiskJob& job, const std::vector<std::string>& names,
                          const std::string& reason)
{
    static_cast<void>(disksNow(names));
    job.fail(reason);
}

/** @return the size that all paths have. */
std::uint64_t checkPaths(const DiskJob& job, const std::vector<std::string>& names, Sizes sizes)
{
    std::vector<disk::ScsiDisk> found = disksNow(names);
    const std::uint64_t bytes = job.bytes != 0 ? job.bytes : found.front().bytes;
    if (sizes == Sizes::GROWN && std::any_of(found.begin(), found.end(), [&](const disk::ScsiDisk& disk) {
            return disk.bytes != bytes;
        })) {
        readSizes(job, names);
        found = disksNow(names);
    }
    for (const disk::ScsiDisk& disk : found) {
        if (disk.bytes != bytes) {
            failFor(job, names,
                    "/dev/" + disk.name + " has " + bytesText(disk.bytes) + " where " +
                        (job.bytes != 0 ? "the array tells " : "another path has ") + bytesText(bytes));
        }
        if (disk.isReadOnly != found.front().isReadOnly || (disk.isReadOnly && job.volume.type == MO_LUN)) {
            failFor(job, names,
                    "/dev/" + (disk.isReadOnly ? disk.name : found.front().name) + " is read-only");
        }
    }
    return bytes;
}

void askAgain(const DiskJob& job, const std::vector<std::string>& names)
{
    for (const std::string& name : names) {
        const std::string difference = differenceOf(job, name);
        if (!difference.empty()) {
            failFor(job, names, difference + " by now; call again");
        }
    }
}

ProvedDisk proveOnce(const DiskJob& job, const std::vector<disk::ScsiDisk>& ours, Sizes sizes)
{
    std::vector<std::string> names(ours.size());
    std::transform(ours.begin(), ours.end(), names.begin(),
                   [](const disk::ScsiDisk& disk) { return disk.name; });
    const std::uint64_t bytes = checkPaths(job, names, sizes);
    ProvedDisk proved{"/dev/" + names.front(), names, bytes};
    MapOfPaths ofThem(job, names, bytes, sizes);
    if (const std::optional<disk::MultipathMap>& map = ofThem.waitForIt()) {
        proved.path = ofThem.path();
        proved.disks = map->paths;
    } else if (names.size() > 1) {
        COMMLOG(OS_LOG_WARN, "%s has %u paths and no multipath map: only %s is handed out.",
                job.name().c_str(), static_cast<unsigned>(names.size()), proved.path.c_str());
    }
    if (ofThem.hasWaited()) {
        askAgain(job, names); // last: a name that goes meanwhile leads nowhere, a number may be another map's
    }
    return proved;
}

} // namespace

ProvedDisk prove(const DiskJob& job, const FindDisks& find, Sizes sizes)
{
    for (unsigned tries = 1;; ++tries) {
        try {
            return proveOnce(job, find(), sizes);
        } catch (const DiskWent& gone) {
            if (tries == MOST_TRIES) {
                job.fail("/dev/" + gone.disk + " has gone while it was looked at; call again");
            }
        }
    }
}

} // namespace ovra::tessel

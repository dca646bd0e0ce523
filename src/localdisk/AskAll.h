#ifndef LOCALDISK_ASKALL_H
#define LOCALDISK_ASKALL_H

#include "host/Limited.h"

#include <ovra/disk/ReadIdentity.h>
#include <ovra/disk/ScsiDisks.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace ovra::tessel {

/**
 * Asks all disks side by side. Those that the kernel knows to be dead are not asked. Throws Unreadable where
 * this process cannot ask.
 * @return the answers; an empty one for each that did not answer in time.
 */
template <class Answer>
std::vector<Answer> askAll(const std::vector<disk::ScsiDisk>& disks, std::chrono::seconds limit,
                           Answer (*ask)(const std::string& path))
{
    std::vector<std::function<Answer()>> questions(disks.size());
    for (size_t i = 0; i < disks.size(); ++i) {
        if (disks[i].isRunning()) {
            questions[i] = [ask, path = "/dev/" + disks[i].name] { return ask(path); };
        }
    }
    return allWithin(limit, questions);
}

/** Asks all disks who they are. @return none for each that did not even fail in time. */
inline std::vector<std::optional<disk::DiskIdentity>> askWho(const std::vector<disk::ScsiDisk>& disks,
                                                             std::chrono::seconds limit)
{
    return askAll<std::optional<disk::DiskIdentity>>(
        disks, limit, [](const std::string& path) { return std::make_optional(disk::askIdentity(path)); });
}

} // namespace ovra::tessel

#endif

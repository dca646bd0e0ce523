#ifndef LOCALDISK_ASKALL_H
#define LOCALDISK_ASKALL_H

#include "host/Limited.h"

#include <ovra/disk/ReadIdentity.h>
#include <ovra/disk/ScsiDisks.h>

#include <memory>
#include <mutex>
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
    struct Answers
    {
        std::mutex mutex;
        std::vector<Answer> all;
    };
    const auto answers = std::make_shared<Answers>();
    answers->all.resize(disks.size());
    std::vector<std::function<void()>> steps;
    for (size_t i = 0; i < disks.size(); ++i) {
        if (disks[i].isRunning()) {
            steps.emplace_back([answers, i, ask, path = "/dev/" + disks[i].name] {
                const Answer answer = ask(path);
                const std::lock_guard<std::mutex> guard(answers->mutex);
                answers->all[i] = answer;
            });
        }
    }
    doWithin(limit, steps);
    const std::lock_guard<std::mutex> guard(answers->mutex);
    return answers->all;
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

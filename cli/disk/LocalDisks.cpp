#include "disk/LocalDisks.h"

#include "disk/HostFiles.h"

#include <ovra/disk/Nodes.h>
#include <ovra/disk/Uses.h>

#include <set>

namespace tesselctl {

std::vector<std::string> disksWithWwn(const std::string& wwn)
{
    std::set<std::string> disks;
    for (const auto& root : hostRoots()) {
        const auto found = ovra::disk::disksWithWwn(wwn, root);
        disks.insert(found.begin(), found.end());
    }
    return {disks.begin(), disks.end()};
}

std::vector<std::string> usesOfDisksWith(const std::string& wwn)
{
    std::vector<std::string> uses;
    for (const auto& root : hostRoots()) {
        for (const auto& disk : ovra::disk::disksWithWwn(wwn, root)) {
            const auto found = ovra::disk::usesOf(disk, root);
            uses.insert(uses.end(), found.found.begin(), found.found.end());
            for (const auto& reason : found.unknown) {
                uses.push_back(std::string("whether ")
                                   .append(disk)
                                   .append(" is in use cannot be told, ")
                                   .append(reason));
            }
        }
    }
    return uses;
}

} // namespace tesselctl

#ifndef LOCALDISK_MAPOFPATHS_H
#define LOCALDISK_MAPOFPATHS_H

#include "localdisk/MapClaims.h"

#include <ovra/disk/ScsiDisks.h>

#include <optional>
#include <string>
#include <vector>

namespace ovra::tessel {

/** Was taken away while it was looked at: what was found before is not so any more. */
struct DiskWent
{
    std::string disk;
};

/** Disks as they are now. Throws DiskWent. */
std::vector<disk::ScsiDisk> disksNow(const std::vector<std::string>& names);

/** The multipath map that all paths of one object are in, where there is to be one. One use. */
class MapOfPaths
{
public:
    MapOfPaths(const DiskJob& job, const std::vector<std::string>& names, std::uint64_t bytes, Sizes sizes)
        : m_job(job), m_names(names), m_bytes(bytes), m_sizes(sizes)
    {
    }

    /**
     * Waits for the map, where it is coming, until it is right and has its name.
     * @return the map; none when there is to be none. Throws when it stays wrong, or holds what is not the
     * object; DiskWent.
     */
    const std::optional<disk::MultipathMap>& waitForIt();
    /** Of the map: by its name, or by its number where udev gives it none. */
    std::string path() const { return hasName() ? nameOfMap() : "/dev/" + m_map->node; }
    /** Time has passed: what was known of the paths before may not be so any more. */
    bool hasWaited() const { return m_hasWaited; }

private:
    void waitForMap();
    std::string nameOfMap() const { return "/dev/mapper/" + m_map->name; }
    bool hasName() const;
    bool waitForName();
    std::string lackOfMap();
    std::string lackOfNoMap();
    std::string lackIn(const disk::MultipathMap& map);
    void checkForeign(const disk::MultipathMap& map) const;
    void resize(const disk::MultipathMap& map);

    const DiskJob& m_job;
    const std::vector<std::string>& m_names;
    const std::uint64_t m_bytes;
    const Sizes m_sizes;
    const Deadline m_end{m_job.options.mapSeconds};
    MapClaims m_claims{m_job};
    std::optional<disk::MultipathMap> m_map;
    bool m_isResized = false;
    bool m_hasWaited = false;
};

} // namespace ovra::tessel

#endif

#ifndef LOCALDISK_MAPCLAIMS_H
#define LOCALDISK_MAPCLAIMS_H

#include "localdisk/DiskJob.h"

#include <map>
#include <string>

namespace ovra::tessel {

/** Whether multipathd takes a disk as a path, so that its map is coming. */
enum class Claim
{
    NO,
    YES,
    UNKNOWN ///< not decided yet
};

/** Asks for the claims of the disks of one object. */
class MapClaims
{
public:
    explicit MapClaims(const DiskJob& job) : m_job(job) {}
    /** Of a disk, e.g. "sdc". Asked until it is decided: then it holds. */
    Claim of(const std::string& disk);
    /** True when udev is not there, or too late to be waited for any longer; multipathd also. */
    bool isUdevLate() const { return m_udevEnd.isOver(); }

private:
    Claim ask(const std::string& disk) const;
    bool isKnownToUdev(const std::string& disk) const;
    bool succeeds(const std::string& command) const;
    std::string limited(const std::string& command) const;

    static constexpr unsigned UDEV_SECONDS = 5;

    const DiskJob& m_job;
    const Deadline m_udevEnd{UDEV_SECONDS};
    std::map<std::string, Claim> m_claims;
};

} // namespace ovra::tessel

#endif

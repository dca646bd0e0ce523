#ifndef HOST_STALEDEVICE_H
#define HOST_STALEDEVICE_H

#include <ovra/disk/Names.h>

#include <optional>
#include <string>

namespace ovra::tessel {

class InterfaceRecord;

/** Closes a step of the search in the run log. */
extern const char* const SEARCH_SEPARATOR;

/**
 * A device with the wanted WWN that stands under the names of the disk that was there before. Removed and
 * found again by the kernel, it gets its own names. LUN 0 is never removed.
 */
class StaleDevice
{
public:
    StaleDevice(const InterfaceRecord& record, const std::string& path, const std::string& wwn)
        : m_record(record), m_path(path), m_wwn(wwn)
    {
    }

    enum class Outcome
    {
        RENEWED,
        NO_DEVICE, ///< the SCSI disk behind the device is not known
        NO_LISTING ///< lsscsi could not be started
    };
    /** Removes the device and has it found again; waits, at most ten seconds, for its name. */
    Outcome renew();

private:
    struct Disk
    {
        std::string path;   ///< by which it is opened
        std::string device; ///< as lsscsi names it
    };

    std::optional<Disk> disk() const;
    void renewAt(const disk::ScsiAddress& address, const Disk& disk) const;
    void waitForName(const disk::ScsiAddress& address) const;

    const InterfaceRecord& m_record;
    const std::string& m_path;
    const std::string& m_wwn;
};

} // namespace ovra::tessel

#endif

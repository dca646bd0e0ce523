#ifndef OVRA_DISK_SCSIHOSTS_H
#define OVRA_DISK_SCSIHOSTS_H

#include <string>
#include <vector>

// The ways from this host to its arrays, as the kernel's /sys shows them. The root, where one is given,
// stands before /sys.

namespace ovra::disk {

/** The kernel's SCSI host of an iSCSI session or an FC port. */
struct ScsiHost
{
    std::string number; ///< "1", of /sys/class/scsi_host/host1
    bool isFC;
    std::string initiator; ///< the name (iqn...), or the port WWN in 16 digits; in lower case
    bool isOnline;         ///< false: scanning it would wait for what is away
    std::string what;      ///< "session1 to iqn.2020-01.test:array is FAILED"
};

/** All of them. */
std::vector<ScsiHost> scsiHosts(const std::string& root = std::string());

/** An initiator's ID as ScsiHost has it: in lower case, a port WWN without colons and 0x. */
std::string plainInitiator(bool isFC, const std::string& id);

/** Where a scan of a host is asked for: of all channels, targets and LUNs, by writing SCAN_ALL. */
std::string scanFileOf(const std::string& hostNumber);
constexpr const char* SCAN_ALL = "- - -";

} // namespace ovra::disk

#endif

#ifndef OVRA_DISK_RESCANSCRIPT_H
#define OVRA_DISK_RESCANSCRIPT_H

#include "ovra/disk/Programs.h"

#include <string>

namespace ovra::disk {

constexpr const char* RESCAN_SCRIPT = "rescan-scsi-bus.sh";

/**
 * The script that "rescan-scsi-bus.sh -r" would make remove healthy disks; empty when there is none.
 *
 * The script of sg3-utils 1.46 and 1.47 looks for words that its own sg_inq no longer prints, takes every
 * disk that answers for gone, and with -r removes it. A script that reads no answers to INQUIRY itself may
 * call another one to do so: then every script of that name in PATH, and every script that it names with its
 * whole path, is judged too. One that names such a script without using it is taken for harmful with it.
 * Throws Unreadable where a script is there and cannot be read.
 */
std::string harmfulRescanScript(const std::string& path = searchPath());

/** True when the text of the script shows that it reads only what an old sg_inq prints. */
bool readsOnlyOldInquiry(const std::string& script);

/**
 * True when the program sg_inq, given as its bytes, prints its answers as an old one does. The format texts
 * in the program tell, so that no disk needs to be asked and no version number be known.
 */
bool printsOldInquiry(const std::string& sgInq);

} // namespace ovra::disk

#endif

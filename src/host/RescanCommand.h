#ifndef HOST_RESCANCOMMAND_H
#define HOST_RESCANCOMMAND_H

#include <string>

namespace ovra::tessel {

/**
 * The command that rescans the SCSI buses and, where that is safe, removes the disks that are gone.
 *
 * rescan-scsi-bus.sh of sg3-utils 1.46 looks for words that its own sg_inq no longer prints, takes every disk
 * that answers for gone, and with -r removes it. Where this pair is installed the command comes without -r,
 * and a line in the run log says so.
 */
std::string rescanCommand();

/** The file that the shell runs for a name, given the value of PATH; empty when there is none. */
std::string findInPath(const std::string& name, const std::string& searchPath);

/** True when the text of the script shows that it reads only what an old sg_inq prints. */
bool readsOnlyOldInquiry(const std::string& script);

/**
 * True when the program sg_inq, given as its bytes, prints its answers as an old one does. The format texts
 * in the program tell, so that no disk needs to be asked and no version number be known.
 */
bool printsOldInquiry(const std::string& sgInq);

} // namespace ovra::tessel

#endif

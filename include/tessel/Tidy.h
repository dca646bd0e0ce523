#ifndef TESSEL_TIDY_H
#define TESSEL_TIDY_H

/** @file
 * Clears away what attaches that name their objects after the time have left behind on the array, and the
 * dead disks that detaches have left on this host. */

#include <tessel/LocalDisk.h>

#include <functional>
#include <string>

namespace ovra {
namespace tessel {

/** How tidy works; every value may be left as it is. */
struct TidyOptions
{
    bool isDryRun = true;             ///< only tells what it would remove
    unsigned long most = 0;           ///< ends after that many removals; 0: goes on to the end
    unsigned minimumAgeSeconds = 10;  ///< what is younger, by its name, may belong to an attach at work
    unsigned tries = 8;               ///< as AccessOptions::tries
    unsigned pauseMilliseconds = 100; ///< as AccessOptions::pauseMilliseconds
};

/** What tidy found out about one object, and did with it. */
struct TidyFinding
{
    /** What became of the object, or would. */
    enum Verdict
    {
        KEPT,      ///< not provably left behind, or the array did not give it up
        REMOVABLE, ///< left behind; a dry run
        REMOVED    ///< was left behind
    };
    NamedObject object; ///< a host group, mapping view or LUN group
    Verdict verdict;    ///< what became of it
    std::string reason; ///< why, for a person
};

/** What a run of tidy came to. */
struct TidyResult
{
    unsigned long removed = 0; ///< objects; in a dry run, those that would be
    unsigned long kept = 0;    ///< objects that were looked at and stay
    bool isComplete = true;    ///< false: it ended early; the next run goes on
};

/**
 * Looks at every host group of a host, the mapping views of these and their LUN groups, and removes those
 * that attachLunToHost and its like made and nobody needs: named hostgroup_, mappingview_ or lungroup_ and
 * ten digits, the seconds of a time that is past, without a description or another setting that an attach
 * does not make; a mapping view with no LUN group, or with one that goes; a LUN group without a LUN or
 * snapshot, in that view alone; a host group whose mapping views all go. No operation tells the other hosts
 * of a host group: the host is taken out of it, and put back where the array does not let it be deleted then.
 *
 * Everything that cannot be proved so stays, and is told with the reason. May be ended at any time, and
 * called again. A host group with one mapping view takes about 8 requests to look at, and about 5 to remove.
 *
 * @param manager logged in.
 * @param hostID the host.
 * @param options see there.
 * @param tell is called with each finding, in this thread; it ends the run by returning false. May be empty.
 * @return how many of what.
 * @throws OvraAPIException when the array cannot be asked; what was removed before stays removed.
 */
TESSEL_API TidyResult tidy(CDeviceManager& manager, const std::string& hostID,
                           const TidyOptions& options = TidyOptions(),
                           const std::function<bool(const TidyFinding&)>& tell = nullptr);

/** How tidyDisks works; every value may be left as it is. */
struct DiskTidyOptions
{
    bool isDryRun = true;   ///< only tells what it would remove
    unsigned long most = 0; ///< ends after that many removals; 0: goes on to the end
    LocalDiskOptions steps; ///< of it, access, lockSeconds and stepSeconds
};

/** What tidyDisks found out about one disk, and did with it. */
struct DiskTidyFinding
{
    DiskPath disk;                ///< the disk, as it was found
    TidyFinding::Verdict verdict; ///< what became of it
    std::string reason;           ///< why, for a person
};

/**
 * Looks at every SCSI disk of this host on the sessions and ports by which the array knows it, and removes
 * the dead ones from the kernel, with their multipath map:
 *
 * - at whose number nothing is mapped any more, as both the array and the disk's target say: the object was
 *   hidden or deleted, or is mapped at another number;
 * - that answer as another object of the array than the one whose names they have, in the kernel, in
 *   /dev/disk/by-id or of their map: their number was given to another object. The next scan finds that anew.
 *
 * Everything else stays: what answers as what it is; and, told with the reason, what does not answer or is
 * known to be blocked or offline, what is in use, what has the LUN number 0, what is not shown to be of this
 * array, and what is in a map with a disk that stays. All is asked again just before each removal. Nothing is
 * written back. Holds the HostTransaction, and refuses to work beside the Korvex product, where this host has
 * any such session or port; else nothing is done.
 *
 * @param manager logged in.
 * @param hostID the host of the array that this host is; not empty.
 * @param options see there.
 * @param tell is called with each disk with which something is amiss, in this thread, which has the
 * HostTransaction; it ends the run by returning false. May be empty.
 * @return how many of what.
 * @throws OvraAPIException when the array cannot be asked, or the lock cannot be had; what was removed before
 * stays removed.
 */
TESSEL_API TidyResult tidyDisks(CDeviceManager& manager, const std::string& hostID,
                                const DiskTidyOptions& options = DiskTidyOptions(),
                                const std::function<bool(const DiskTidyFinding&)>& tell = nullptr);

} // namespace tessel
} // namespace ovra

#endif

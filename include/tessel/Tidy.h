#ifndef TESSEL_TIDY_H
#define TESSEL_TIDY_H

/** @file
 * Clears away what attaches that name their objects after the time have left behind. */

#include <tessel/Access.h>

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

} // namespace tessel
} // namespace ovra

#endif

#include "localdisk/MapClaims.h"

#include "host/Commands.h"

#include <ovra/disk/Processes.h>
#include <ovra/disk/Programs.h>

namespace ovra::tessel {
namespace {

constexpr const char* MULTIPATH = "multipath";
constexpr const char* MULTIPATHD = "multipathd";

} // namespace

Claim MapClaims::of(const std::string& disk)
{
    Claim& claim = m_claims.emplace(disk, Claim::UNKNOWN).first->second;
    if (claim == Claim::UNKNOWN) {
        claim = ask(disk);
    }
    return claim;
}

Claim MapClaims::ask(const std::string& disk) const
{
    if (disk::findInPath(MULTIPATH).empty()) {
        return Claim::NO;
    }
    if (!isUdevLate() && !isKnownToUdev(disk)) {
        return Claim::UNKNOWN;
    }
    const std::string answer = "answer=" + limited("multipath -u /dev/" + disk) + "; case $?$answer in ";
    if (succeeds(answer + "0*=?1?) exit 0;; esac; exit 1")) {
        if (disk::mayRun(MULTIPATHD)) {
            return Claim::YES;
        }
        return isUdevLate() ? Claim::NO : Claim::UNKNOWN; // it is being started again, or not there
    }
    return succeeds(answer + "0*=?0?|1|1D*) exit 0;; esac; exit 1") ? Claim::NO : Claim::UNKNOWN;
}

/** Whether udev has come to the disk, waited for by its events: only then does multipath know its name. */
bool MapClaims::isKnownToUdev(const std::string& disk) const
{
    const std::string seconds = std::to_string(UDEV_SECONDS);
    return succeeds("timeout " + std::to_string(m_job.options.stepSeconds) +
                    " udevadm wait --initialized=true --timeout=" + seconds + " /dev/" + disk +
                    " >/dev/null 2>&1");
}

bool MapClaims::succeeds(const std::string& command) const
{
    return runWithin(2 * m_job.step(), command) == 0;
}

std::string MapClaims::limited(const std::string& command) const
{
    return "$(timeout " + std::to_string(m_job.options.stepSeconds) + " " + command + " 2>/dev/null)";
}

} // namespace ovra::tessel

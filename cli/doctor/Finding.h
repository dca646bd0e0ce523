#ifndef DOCTOR_FINDING_H
#define DOCTOR_FINDING_H

#include "frame/Context.h"

#include <string>
#include <vector>

namespace tesselctl {

enum class Verdict
{
    OK,
    WARNING,
    FAILURE
};

/** What one check found. */
struct Finding
{
    Verdict verdict;
    std::string subject; ///< "rescan lock"
    std::string found;   ///< what is the case
    std::string advice;  ///< what to do; empty when nothing is
};

using Findings = std::vector<Finding>;

/** The checks; none changes anything on this host or the array. */
Findings checkRights(Context& context);
Findings checkTools(Context& context);
Findings checkRescanScript(Context& context);
Findings checkKorvex(Context& context);
Findings checkUdev(Context& context);
Findings checkRescanLock(Context& context);
Findings checkLogs(Context& context);
Findings checkTrust(Context& context);
Findings checkArray(Context& context);

} // namespace tesselctl

#endif

#ifndef METRICS_AUDITTOTALS_H
#define METRICS_AUDITTOTALS_H

#include <map>
#include <string>
#include <utility>

namespace tesselctl {

/** How often something was done, and how long all of it took. */
struct Total
{
    unsigned long count = 0;
    double seconds = 0;
};

/** What the audit logs of a directory add up to, by operation and result ("done", "failed"). */
struct AuditTotals
{
    using ByResult = std::map<std::pair<std::string, std::string>, Total>;
    ByResult attaches;
    ByResult scans;
    ByResult removals;
    Total lockWaits;

    static AuditTotals of(const std::string& directory);
};

} // namespace tesselctl

#endif

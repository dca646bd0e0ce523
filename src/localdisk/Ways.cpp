#include "localdisk/Ways.h"

#include "job/Tries.h"

#include <ovra/disk/ScsiDisks.h>
#include <ovra/disk/ScsiHosts.h>

#include <map>
#include <set>
#include <utility>

namespace ovra::tessel {
namespace {

/** The host that the array counts an initiator to. */
std::string hostWith(const DiskJob& job, bool isFC, const std::string& initiator)
{
    const Array array(*job.manager);
    return whileBusy(job.options.access, [&] {
        return isFC ? array.fcInitiators()->getFCInitiator(initiator).PARENTID
                    : array.iscsiInitiators()->getIscsiInitiator(initiator).PARENTID;
    });
}

/** Whether the array counts an initiator to a host; it may not know the initiator at all. */
bool belongsTo(const DiskJob& job, const disk::ScsiHost& host, const std::string& hostID)
{
    try {
        return hostWith(job, host.isFC, host.initiator) == hostID;
    } catch (const OvraAPIExceptionWithErrCode& refusal) {
        if (isBusy(refusal)) { // it may know it
            throw;
        }
        return false;
    }
}

using Known = std::map<std::pair<bool, std::string>, bool>; // whether an initiator belongs to the host

Ways waysOf(const DiskJob& job, const std::string& hostID, Known known)
{
    Ways ways;
    for (const disk::ScsiHost& host : disk::scsiHosts()) {
        const auto key = std::make_pair(host.isFC, host.initiator);
        if (known.count(key) == 0) {
            known[key] = belongsTo(job, host, hostID);
        }
        if (known[key]) {
            ways.all.push_back(host.number);
            host.isOnline ? ways.online.push_back(host.number) : ways.away.push_back(host.what);
        }
    }
    return ways;
}

/** The digits by which the WWNs of an array begin: kind, company, and what the company numbers its arrays by.
 */
constexpr size_t ARRAY_DIGITS = 16;
constexpr const char* LUN_ZERO = "0"; // the target's own, alike in all

/** Takes those out of hosts whose disks are all another array's; none when all are. */
std::vector<std::string> takeOthers(const DiskJob& job, std::vector<std::string>& hosts)
{
    std::set<std::string> own;
    std::set<std::string> foreign;
    for (const disk::ScsiAddress& address : disk::scsiAddressesOf(hosts)) {
        const std::string known = own.count(address.host) != 0 || address.lun == LUN_ZERO
                                      ? std::string()
                                      : disk::knownAt(address.text).wwn;
        if (!known.empty()) {
            const bool isOwn = known.compare(0, ARRAY_DIGITS, job.wwn, 0, ARRAY_DIGITS) == 0;
            (isOwn ? own : foreign).insert(address.host);
        }
    }
    std::vector<std::string> ours;
    std::vector<std::string> others;
    for (const std::string& host : hosts) {
        (foreign.count(host) != 0 && own.count(host) == 0 ? others : ours).push_back(host);
    }
    if (ours.empty()) {
        return {};
    }
    hosts = ours;
    return others;
}

} // namespace

std::string hostOf(const DiskJob& job, const HostInitiator& initiator)
{
    return hostWith(job, initiator.isFC, initiator.id);
}

Ways waysOf(const DiskJob& job, const HostInitiator& initiator, const std::string& hostID)
{
    const std::string own = disk::plainInitiator(initiator.isFC, initiator.id);
    Ways ways = waysOf(job, hostID, Known{{{initiator.isFC, own}, true}});
    ways.others = takeOthers(job, ways.online);
    return ways;
}

Ways waysOf(const DiskJob& job, const std::string& hostID)
{
    return waysOf(job, hostID, Known());
}

void requireOnline(const DiskJob& job, const HostInitiator& initiator, const Ways& ways)
{
    if (ways.online.empty()) {
        job.fail((initiator.isFC ? "this host has no FC port " : "this host has no iSCSI session of ") +
                 initiator.id + " that is online" +
                 (ways.away.empty() ? "; log in to the array's target" : ": " + listed(ways.away)));
    }
}

} // namespace ovra::tessel

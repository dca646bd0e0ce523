#include "disk/HostFiles.h"
#include "disk/Initiator.h"
#include "frame/Context.h"
#include "logs/LogFiles.h"
#include "metrics/Exposition.h"
#include "session/Secret.h"

#include <ovra/disk/ScsiDisks.h>
#include <ovra/disk/ScsiHosts.h>

namespace tesselctl {
namespace {

void addTotals(Exposition& exposition, const std::string& name, const std::string& help,
               const AuditTotals::ByResult& totals)
{
    exposition.summary(name, help);
    for (const auto& [key, total] : totals) {
        exposition.total({{"operation", key.first}, {"result", key.second}}, total);
    }
}

void addAudit(Exposition& exposition, const AuditTotals& totals)
{
    addTotals(exposition, "tessel_attach_seconds",
              "Calls that show a LUN or snapshot to a host, in the audit log.", totals.attaches);
    addTotals(exposition, "tessel_scan_seconds", "Scans of this host for disks, in the audit log.",
              totals.scans);
    addTotals(exposition, "tessel_removal_seconds",
              "Calls that remove a disk or hide a LUN or snapshot, in the audit log.", totals.removals);
    exposition.summary("tessel_rescan_lock_wait_seconds",
                       "Waits of calls for the rescan lock of this host, in the audit log.");
    exposition.total({}, totals.lockWaits);
}

/** The disks of this host's initiators, as the kernel knows them: none is asked anything. */
void addDisks(Exposition& exposition)
{
    const std::string root = hostPath("");
    std::vector<std::string> numbers;
    for (const ovra::disk::ScsiHost& host : ovra::disk::scsiHosts(root)) {
        numbers.push_back(host.number);
    }
    std::map<Exposition::Labels, unsigned> paths;
    unsigned dead = 0;
    for (const ovra::disk::ScsiDisk& disk : ovra::disk::scsiDisksOf(numbers, root)) {
        dead += disk.isRunning() ? 0 : 1;
        if (!disk.known.wwn.empty()) {
            ++paths[{{"wwn", disk.known.wwn},
                     {"lun", disk.known.lunId},
                     {"state", disk.isRunning() ? "running" : "dead"}}];
        }
    }
    exposition.gauge("tessel_dead_disks", "Disks of this host that the kernel does not find running.");
    exposition.value({}, dead);
    exposition.gauge("tessel_lun_paths", "Paths of this host to a LUN or snapshot, by its WWN and ID.");
    for (const auto& [labels, count] : paths) {
        exposition.value(labels, count);
    }
}

/** What attaches have left of this host on the array. */
void addLeftovers(Exposition& exposition, Context& context)
{
    const std::string host =
        context.handler<CIscsiInitiatorHandler>().getIscsiInitiator(chosenInitiator(context)).PARENTID;
    const auto found =
        host.empty() ? ovra::tessel::TidyResult() : ovra::tessel::tidy(context.session().manager(), host);
    exposition.gauge("tessel_leftover_objects", "Objects of the array that tesselctl tidy would remove.");
    exposition.value({}, static_cast<double>(found.removed));
}

void metrics(Context& context)
{
    Exposition exposition;
    addAudit(exposition, AuditTotals::of(logDirectoryInUse()));
    addDisks(exposition);
    if (context.has("--array") || !environment("TESSEL_ARRAY").empty()) {
        addLeftovers(exposition, context);
    }
    if (context.has("--textfile")) {
        replaceFile(context.text("--textfile"), exposition.text());
    } else {
        context.printer().write(exposition.text());
    }
}

} // namespace

Commands metricsCommands()
{
    std::vector<Option> options = {
        {"--textfile", "FILE", "put them into this file, in one step", false, {}, true}};
    const std::vector<Option> ofHost = initiatorOptions();
    options.insert(options.end(), ofHost.begin(), ofHost.end());
    return {{{"metrics"},
             "tell what was attached, scanned and removed, and how this host's disks are, as metrics",
             {},
             options,
             {},
             metrics}};
}

} // namespace tesselctl

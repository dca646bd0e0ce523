#include "disk/DiskJson.h"
#include "disk/HostFiles.h"
#include "disk/Initiator.h"
#include "frame/Context.h"
#include "objects/ObjectKind.h"
#include "text/Display.h"
#include "text/Numbers.h"

#include <ovra/disk/ScsiHosts.h>
#include <tessel/Tidy.h>

namespace tesselctl {
namespace {

using ovra::tessel::TidyFinding;
using ovra::tessel::TidyResult;

constexpr const char* DOES[] = {"keeps", "would remove", "removes"};
constexpr const char* VERDICTS[] = {"kept", "removable", "removed"};

std::string titleOf(MOType type)
{
    return type == MO_HOSTGROUP ? "host group" : type == MO_MAPPINGVIEW ? "mapping view" : "LUN group";
}

std::string chosenHost(Context& context)
{
    if (context.has("--host")) {
        return context.text("--host");
    }
    const std::string initiator = chosenInitiator(context);
    std::string host = mustRead(context.session(), "iSCSI initiator", initiator, [&](const std::string& id) {
                           return context.handler<CIscsiInitiatorHandler>().getIscsiInitiator(id);
                       }).PARENTID;
    if (host.empty()) {
        throw Failure("the initiator " + initiator + " belongs to no host");
    }
    return host;
}

/** Tells each finding: to a person at once, for there may be thousands, and Ctrl-C. */
Json::Value told(Printer& printer, const std::string& what, TidyFinding::Verdict verdict,
                 const std::string& reason)
{
    if (!printer.isJson()) {
        printer.write(std::string(DOES[verdict]) + " " + what + ": " + printable(reason) + "\n");
    }
    Json::Value entry(Json::objectValue);
    entry["verdict"] = VERDICTS[verdict];
    entry["reason"] = validUtf8(reason);
    return entry;
}

/** Why the disks of this host are left alone; "" when they are not. */
std::string reasonToLeaveDisks()
{
    if (ovra::disk::scsiHosts().empty()) {
        return "";
    }
    if (!hasScanRights()) {
        return "only root may ask them";
    }
    return findProgram(KORVEX_RESCAN).empty() ? "" : "Korvex is installed and manages them itself";
}

TidyResult tidyArray(Context& context, const std::string& host, bool isDryRun, unsigned long most,
                     Json::Value& objects)
{
    ovra::tessel::TidyOptions options;
    options.isDryRun = isDryRun;
    options.most = most;
    return ovra::tessel::tidy(context.session().manager(), host, options, [&](const TidyFinding& finding) {
        const auto& [type, id, name] = finding.object;
        Json::Value entry = told(context.printer(), titleOf(type) + " " + id + " (" + printable(name) + ")",
                                 finding.verdict, finding.reason);
        entry["type"] = titleOf(type);
        entry["id"] = id;
        entry["name"] = validUtf8(name);
        objects.append(entry);
        return true;
    });
}

/** The dead disks, where the host is this one. */
TidyResult tidyDisks(Context& context, const std::string& host, bool isDryRun, unsigned long most,
                     Json::Value& disks)
{
    const std::string reason = reasonToLeaveDisks();
    if (!reason.empty()) {
        context.printer().note("the disks of this host are not looked at: " + reason);
        return {};
    }
    ovra::tessel::DiskTidyOptions options;
    options.isDryRun = isDryRun;
    options.most = most;
    return ovra::tessel::tidyDisks(
        context.session().manager(), host, options, [&](const ovra::tessel::DiskTidyFinding& finding) {
            const auto& [device, address, state] = finding.disk;
            Json::Value entry = told(context.printer(), "disk " + device + " (" + address + ")",
                                     finding.verdict, finding.reason);
            const Json::Value path = pathJson(device, address, state);
            for (const std::string& name : path.getMemberNames()) {
                entry[name] = path[name];
            }
            disks.append(entry);
            return true;
        });
}

void tidyUp(Context& context)
{
    if (context.has("--host") && (context.has("--initiator") || context.has("--initiator-file"))) {
        throw UsageError("--host does not go with --initiator");
    }
    const bool isDryRun = !context.has("--remove");
    const unsigned long most =
        context.has("--most") ? parseNumber("--most", context.text("--most"), 1, UINT32_MAX) : 0;
    const std::string host = chosenHost(context);
    Json::Value json(Json::objectValue);
    json["action"] = "tidy";
    json["hostId"] = host;
    json["dryRun"] = isDryRun;
    Json::Value& objects = json["objects"] = Json::Value(Json::arrayValue);
    Json::Value& disks = json["disks"] = Json::Value(Json::arrayValue);
    TidyResult result = tidyArray(context, host, isDryRun, most, objects);
    if (result.isComplete) {
        const TidyResult ofDisks =
            tidyDisks(context, host, isDryRun, most == 0 ? 0 : most - result.removed, disks);
        result.removed += ofDisks.removed;
        result.kept += ofDisks.kept;
        result.isComplete = ofDisks.isComplete;
    }
    json["removed"] = Json::UInt64(result.removed);
    json["kept"] = Json::UInt64(result.kept);
    json["complete"] = result.isComplete;
    const std::string text = "host " + host + ": " + std::to_string(result.removed) +
                             (isDryRun ? " to remove (with --remove), " : " removed, ") +
                             std::to_string(result.kept) + " kept" +
                             (result.isComplete ? "" : "; ended early, call it again") + "\n";
    context.printer().result(text, json);
}

} // namespace

Commands tidyCommands()
{
    std::vector<Option> options = initiatorOptions();
    options.push_back({"--host", "ID", "the host itself, instead of an initiator"});
    options.push_back({"--remove", "", "remove what is found; without it nothing is changed"});
    options.push_back({"--most", "N", "end after N removals; the next call goes on"});
    return {{{"tidy"},
             "clear away what attaches have left of a host, and dead disks of this one",
             {},
             options,
             {},
             tidyUp}};
}

} // namespace tesselctl

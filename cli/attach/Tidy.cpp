#include "disk/Initiator.h"
#include "frame/Context.h"
#include "objects/ObjectKind.h"
#include "text/Display.h"
#include "text/Numbers.h"

namespace tesselctl {
namespace {

using ovra::tessel::TidyFinding;

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
    const std::string host =
        mustRead(context.session(), "iSCSI initiator", initiator, [&](const std::string& id) {
            return context.handler<CIscsiInitiatorHandler>().getIscsiInitiator(id);
        }).PARENTID;
    if (host.empty()) {
        throw Failure("the initiator " + initiator + " belongs to no host");
    }
    return host;
}

void tidyUp(Context& context)
{
    if (context.has("--host") && (context.has("--initiator") || context.has("--initiator-file"))) {
        throw UsageError("--host does not go with --initiator");
    }
    ovra::tessel::TidyOptions options;
    options.isDryRun = !context.has("--remove");
    options.most = context.has("--most") ? parseNumber("--most", context.text("--most"), 1, UINT32_MAX) : 0;
    const std::string host = chosenHost(context);
    Printer& printer = context.printer();
    Json::Value objects(Json::arrayValue);
    const auto result =
        ovra::tessel::tidy(context.session().manager(), host, options, [&](const TidyFinding& finding) {
            if (!printer.isJson()) { // at once: there may be thousands, and Ctrl-C
                printer.write(std::string(DOES[finding.verdict]) + " " + titleOf(finding.object.type) + " " +
                              finding.object.ID + " (" + printable(finding.object.NAME) +
                              "): " + printable(finding.reason) + "\n");
            }
            Json::Value entry(Json::objectValue);
            entry["type"] = titleOf(finding.object.type);
            entry["id"] = finding.object.ID;
            entry["name"] = validUtf8(finding.object.NAME);
            entry["verdict"] = VERDICTS[finding.verdict];
            entry["reason"] = validUtf8(finding.reason);
            objects.append(entry);
            return true;
        });
    Json::Value json(Json::objectValue);
    json["action"] = "tidy";
    json["hostId"] = host;
    json["dryRun"] = options.isDryRun;
    json["objects"] = objects;
    json["removed"] = Json::UInt64(result.removed);
    json["kept"] = Json::UInt64(result.kept);
    json["complete"] = result.isComplete;
    const std::string text = "host " + host + ": " + std::to_string(result.removed) +
                             (options.isDryRun ? " to remove (with --remove), " : " removed, ") +
                             std::to_string(result.kept) + " kept" +
                             (result.isComplete ? "" : "; ended early, call it again") + "\n";
    printer.result(text, json);
}

} // namespace

Commands tidyCommands()
{
    std::vector<Option> options = initiatorOptions();
    options.push_back({"--host", "ID", "the host itself, instead of an initiator"});
    options.push_back({"--remove", "", "remove what is found; without it nothing is changed"});
    options.push_back({"--most", "N", "end after N objects; the next call goes on"});
    return {{{"tidy"}, "clear away what attaches have left of a host", {}, options, {}, tidyUp}};
}

} // namespace tesselctl

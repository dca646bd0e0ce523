#include "attach/Attachable.h"
#include "attach/DetachEffect.h"
#include "attach/Devices.h"
#include "disk/HostFiles.h"
#include "disk/Initiator.h"
#include "disk/LocalDisks.h"
#include "objects/ObjectKind.h"
#include "text/Words.h"

namespace tesselctl {
namespace {

constexpr const char* EVERY_HOST = "0";

Json::Value resultOf(const char* action, const Attachable& object, const std::string& id,
                     const std::string& initiator)
{
    Json::Value result(Json::objectValue);
    result["action"] = action;
    result["object"] = object.title;
    result["id"] = id;
    result["initiator"] = initiator;
    return result;
}

IscsiInitiatorMO readInitiator(Context& context, const std::string& initiator)
{
    return mustRead(context.session(), "iSCSI initiator", initiator, [&](const std::string& id) {
        return context.handler<CIscsiInitiatorHandler>().getIscsiInitiator(id);
    });
}

void attach(Context& context, const Attachable& object)
{
    const std::string id = context.text("ID");
    const std::string initiator = chosenInitiator(context);
    if (context.has("--scan")) {
        requireScanRights("--scan");
    }
    object.wwn(context.session(), id); // tells an unknown ID apart
    readInitiator(context, initiator);
    const std::string hostIp =
        context.has("--initiator") ? "" : localAddressTowards(context.session().address());
    auto& handler = context.handler<CDiskAttachHandler>();
    const bool wasVisible = (handler.*object.attach)(id, initiator, context.text("--host-ip", hostIp)) == 1;

    const std::string host = readInitiator(context, initiator).PARENTID;
    if (host.empty() || !object.isSeenByHost(context.session(), id, host)) {
        throw Failure("the array took the request, but the host of " + initiator + " does not see " +
                      object.called(id) + "; see why with 'tesselctl explain " + object.word + " " + id +
                      " --initiator " + initiator + "'");
    }
    Json::Value result = resultOf("attach", object, id, initiator);
    result["hostId"] = host;
    result["wasVisible"] = wasVisible;
    std::string text = object.called(id) +
                       (wasVisible ? " was visible to host " : " is now visible to host ") + host +
                       (wasVisible ? " already" : "") + "\n";
    if (context.has("--scan")) {
        try {
            scanFor(context, object, id, result);
        } catch (const Failure& failure) {
            throw Failure("the attach was made (" + text.substr(0, text.size() - 1) +
                              "), but not the scan: " + failure.what(),
                          failure.code());
        }
        text += deviceSentence(result);
    }
    context.printer().result(text, result);
}

/** Devices that stay behind without their LUN become dead disks. */
void warnOfDevices(Context& context, const Attachable& object, const std::string& id)
{
    const auto disks = disksWithWwn(object.wwn(context.session(), id));
    if (!disks.empty()) {
        context.printer().note("this host still has devices of it (" + joined(disks) +
                               "), which are dead once it is detached: use --remove-devices");
    }
}

/** The host that must no longer see the object; empty when the initiator is bound to none. */
void checkGone(Context& context, const Attachable& object, const std::string& id, const std::string& host)
{
    const bool stays = host == EVERY_HOST ? !object.groups(context.session(), id).empty()
                                          : !host.empty() && object.isSeenByHost(context.session(), id, host);
    if (stays) {
        throw Failure("the array took the request, but " +
                      (host == EVERY_HOST ? "a LUN group still holds " : "host " + host + " still sees ") +
                      object.called(id) + "; see 'tesselctl lungroup list --" + object.word + " " + id + "'");
    }
}

void detach(Context& context, const Attachable& object)
{
    const std::string id = context.text("ID");
    const bool all = context.has("--all-hosts");
    if (all && (context.has("--initiator") || context.has("--initiator-file"))) {
        throw UsageError("--all-hosts does not go with --initiator");
    }
    const std::string initiator = all ? EVERY_HOST : chosenInitiator(context);
    object.wwn(context.session(), id); // tells an unknown ID apart
    const std::string host = all ? EVERY_HOST : readInitiator(context, initiator).PARENTID;
    Session& session = context.session();
    const bool wasVisible =
        all ? !object.groups(session, id).empty() : !host.empty() && object.isSeenByHost(session, id, host);
    const DetachEffect effect =
        wasVisible ? effectOfDetach(session, object, id, all ? "" : host) : DetachEffect();
    if (!context.has("--force")) {
        refuseSideEffects(effect, object.called(id));
    }
    Json::Value result = resultOf("detach", object, id, all ? "" : initiator);
    std::string text;
    if (context.has("--remove-devices")) {
        removeDevicesOf(context, object, id, result);
        text = deviceSentence(result);
    } else {
        warnOfDevices(context, object, id);
    }
    (context.handler<CDiskAttachHandler>().*object.detach)(id, initiator);
    checkGone(context, object, id, host);
    result["wasVisible"] = wasVisible;
    result["hostId"] = all || host.empty() ? Json::Value() : Json::Value(host);
    const std::string where = all            ? "any host"
                              : host.empty() ? "initiator " + initiator + ", which has no host"
                                             : "host " + host;
    text += object.called(id) + (wasVisible ? " is no longer visible to " : " was not visible to ") + where +
            "\n";
    text += tellEffect(session, effect, result);
    context.printer().result(text, result);
}

} // namespace

Commands attachCommands()
{
    std::vector<Option> attaching = initiatorOptions();
    attaching.push_back(
        {"--host-ip", "IP", "address of the host record, where the attach has to create one"});
    attaching.push_back({"--scan", "", "rescan this host afterwards and print the device"});
    std::vector<Option> detaching = initiatorOptions();
    detaching.push_back({"--all-hosts", "", "take it away from every host"});
    detaching.push_back({"--remove-devices", "", "remove its devices from this host before"});
    detaching.push_back(
        {"--force", "",
         "even when other hosts lose it, a group that no attach has made is deleted, or devices "
         "to be removed are in use"});
    Commands commands = forEachAttachable("attach", "make visible to a host", attaching, attach);
    for (const auto& command : forEachAttachable("detach", "take away from a host", detaching, detach)) {
        commands.push_back(command);
    }
    return commands;
}

} // namespace tesselctl

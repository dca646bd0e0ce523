#include "attach/Attach.h"

#include "attach/Devices.h"
#include "attach/Patience.h"
#include "disk/HostFiles.h"
#include "disk/Initiator.h"
#include "frame/Outcome.h"
#include "objects/Existence.h"
#include "session/Advice.h"

namespace tesselctl {
namespace {

using ovra::tessel::AccessOptions;
using ovra::tessel::AccessResult;
using ovra::tessel::HostInitiator;

AccessResult show(Context& context, const Attachable& object, const std::string& id,
                  const std::string& initiator)
{
    AccessOptions options;
    options.hostIP = context.text(
        "--host-ip", context.has("--initiator") ? "" : localAddressTowards(context.session().address()));
    try {
        return ensureVisible(context.session().manager(), object.storage(id), HostInitiator::iscsi(initiator),
                             options);
    } catch (const OvraAPIException& error) {
        throwUnchanged(context, object, id, initiator, error,
                       "the host of " + initiator + " does not see " + object.called(id),
                       "see why with 'tesselctl explain " + object.word + " " + id + " --initiator " +
                           initiator + "'");
    }
}

void attach(Context& context, const Attachable& object)
{
    const std::string id = context.text("ID");
    const std::string initiator = chosenInitiator(context);
    if (context.has("--scan")) {
        requireScanRights("--scan");
    }
    const AccessResult access = show(context, object, id, initiator);
    Json::Value result = resultOf("attach", object, id, initiator);
    result["hostId"] = access.hostID;
    result["wasVisible"] = access.wasVisible;
    std::string text = object.called(id) +
                       (access.wasVisible ? " was visible to host " : " is now visible to host ") +
                       access.hostID + (access.wasVisible ? " already" : "") + "\n";
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

} // namespace

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

std::string hostOf(Context& context, const std::string& initiator)
{
    return patiently([&] {
               return mustRead(context.session(), "iSCSI initiator", initiator,
                               [&](const std::string& wanted) {
                                   return context.handler<CIscsiInitiatorHandler>().getIscsiInitiator(wanted);
                               });
           })
        .PARENTID;
}

void throwUnchanged(Context& context, const Attachable& object, const std::string& id,
                    const std::string& initiator, const OvraAPIException& error, const std::string& what,
                    const std::string& advice)
{
    if (isTransportFailure(ovra::tessel::failureOf(error))) {
        throw;
    }
    patiently([&] { return object.wwn(context.session(), id); }); // tells an unknown ID apart
    hostOf(context, initiator);
    const Outcome outcome = outcomeOf(error);
    throw Failure(what + ": " + outcome.message + "; " + advice, ExitCode::FAILURE, outcome.arrayCode);
}

Commands attachCommands()
{
    std::vector<Option> options = initiatorOptions();
    options.push_back({"--host-ip", "IP", "address of the host record, where the attach has to create one"});
    options.push_back({"--scan", "", "rescan this host afterwards and print the device"});
    return forEachAttachable("attach", "make visible to a host", options, attach);
}

} // namespace tesselctl

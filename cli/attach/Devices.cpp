#include "attach/Devices.h"

#include "attach/ToolOutput.h"
#include "disk/HostFiles.h"
#include "disk/LocalDisks.h"
#include "output/Progress.h"
#include "session/Advice.h"
#include "text/Words.h"

#include <cstdlib>
#include <optional>

namespace tesselctl {
namespace {

/** /dev/sdc for /dev/disk/by-id/../../sdc. */
std::string realDevice(const std::string& path)
{
    char* real = realpath(path.c_str(), nullptr);
    std::string device = real == nullptr ? path : real;
    std::free(real);
    return device;
}

void refuseInUse(const std::string& wwn)
{
    const auto uses = usesOfDisksWith(wwn);
    if (!uses.empty()) {
        throw Failure("the devices are in use: " + joined(uses, "; ") +
                      "; release them first, or remove them all the same with --force");
    }
}

/** What the tools print meanwhile is told afterwards. Throws Failure when Ctrl-C has ended one of them. */
template <class Work>
void runScanner(Context& context, const std::string& what, Work work)
{
    auto& scanner = context.handler<CDiskScannerHandler>();
    std::optional<Progress> progress(what); // on the standard error that the tools do not get
    ToolOutput aside;
    work(scanner);
    progress.reset();
    aside.tell(context.printer());
    if (ovra::tessel::lastScanSignal() != 0) {
        throw Failure(what + " was interrupted", ExitCode::INTERRUPTED);
    }
}

void scan(Context& context, const Attachable& object)
{
    Json::Value result(Json::objectValue);
    scanFor(context, object, context.text("ID"), result);
    result["action"] = "scan";
    result["object"] = object.title;
    result["id"] = context.text("ID");
    context.printer().result(result["device"].asString() + "\n", result);
}

void remove(Context& context, const Attachable& object)
{
    Json::Value result(Json::objectValue);
    removeDevicesOf(context, object, context.text("ID"), result);
    result["action"] = "remove";
    result["object"] = object.title;
    result["id"] = context.text("ID");
    context.printer().result(deviceSentence(result), result);
}

} // namespace

Option forceOption()
{
    return {"--force", "", "remove devices even when they are mounted, swapped to or held"};
}

void scanFor(Context& context, const Attachable& object, const std::string& id, Json::Value& result)
{
    requireScanRights("the scan");
    if (object.wwn(context.session(), id).empty()) {
        throw Failure("the array gives no WWN for " + object.called(id) +
                      ": its disk cannot be told from others");
    }
    std::string wanted = id;
    std::string path;
    runScanner(context, "rescanning the SCSI buses for " + object.called(id),
               [&](CDiskScannerHandler& scanner) { path = (scanner.*object.scan)(wanted); });
    if (path.empty()) {
        throw Failure("no disk of this host carries " + object.called(id) +
                      "; see whether the host may see it ('tesselctl explain " + object.word + " " + id +
                      "'), whether this host can scan ('tesselctl doctor') and the run log in " +
                      logDirectory());
    }
    result["devicePath"] = path;
    result["device"] = realDevice(path);
}

void removeDevicesOf(Context& context, const Attachable& object, const std::string& id, Json::Value& result)
{
    requireScanRights("the removal");
    const std::string wwn = object.wwn(context.session(), id);
    if (wwn.empty()) {
        throw Failure("the array gives no WWN for " + object.called(id) +
                      ": its devices cannot be told from others");
    }
    result["removedDevices"] = Json::Value(Json::arrayValue);
    const auto disks = disksWithWwn(wwn);
    if (disks.empty()) {
        return;
    }
    if (!findProgram(KORVEX_RESCAN).empty()) {
        context.printer().note("Korvex is installed and removes its devices itself: " + joined(disks) +
                               " stay");
        return;
    }
    if (!context.has("--force")) {
        refuseInUse(wwn);
    }
    std::string wanted = id;
    runScanner(context, "removing " + joined(disks) + " of " + object.called(id),
               [&](CDiskScannerHandler& scanner) { (scanner.*object.removeDevices)(wanted); });
    const auto left = disksWithWwn(wwn);
    if (!left.empty()) {
        throw Failure("still on this host after the removal: " + joined(left) + "; see the run log in " +
                      logDirectory());
    }
    for (const auto& disk : disks) {
        result["removedDevices"].append(disk);
    }
}

std::string deviceSentence(const Json::Value& result)
{
    if (result.isMember("device")) {
        return "device " + result["device"].asString() + "\n";
    }
    std::vector<std::string> disks;
    for (const auto& disk : result["removedDevices"]) {
        disks.push_back(disk.asString());
    }
    return disks.empty() ? "no devices removed from this host\n"
                         : "removed " + joined(disks) + " from this host\n";
}

Commands deviceCommands()
{
    Commands commands = forEachAttachable("scan", "rescan this host and find the device of", {}, scan);
    for (const auto& command :
         forEachAttachable("remove", "remove from this host the devices of", {forceOption()}, remove)) {
        commands.push_back(command);
    }
    return commands;
}

} // namespace tesselctl

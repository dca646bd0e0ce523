#include "host/DeviceRemoval.h"

#include "host/CommandLines.h"
#include "host/WriteBack.h"
#include "observer/Steps.h"
#include "session/CallsAtWork.h"
#include "session/Log.h"

#include <ovra/disk/Files.h>
#include <ovra/disk/Lsscsi.h>
#include <ovra/disk/Nodes.h>
#include <ovra/disk/Uses.h>

#include <set>

namespace ovra::tessel {

namespace {

constexpr int PASSES = 5;

void nameUses(const std::string& device, const disk::Uses& uses)
{
    for (const std::string& use : uses.found) {
        COMMLOG(OS_LOG_WARN, "%s is removed while in use: %s", device.c_str(), use.c_str());
    }
    for (const std::string& reason : uses.unknown) {
        COMMLOG(OS_LOG_WARN, "%s is removed, whether it is in use cannot be told: %s", device.c_str(),
                reason.c_str());
    }
}

void sayNotWritten(const std::string& name, const std::string& reason)
{
    if (!reason.empty()) {
        COMMLOG(OS_LOG_WARN, "%s: data not yet written could not be written back before its removal: %s",
                name.c_str(), reason.c_str());
    }
}

/** A disk and what stands on it; it alone where that is not known, which is said. */
std::vector<disk::Node> nodesOn(const std::string& device)
{
    const std::string name = disk::lastName(device);
    try {
        return disk::nodesOn(name);
    } catch (const disk::Unreadable& problem) {
        sayNotWritten("what stands on " + device, problem.what());
        return {{name, "", "", "", ""}};
    }
}

/** Writes back a disk and all that stands on it, from the top: what is removed with it is lost. */
void flushAll(const std::string& path, const std::string& device, const std::vector<std::string>& mounts)
{
    for (const std::string& mount : mounts) {
        sayNotWritten(mount, writeBackMount(mount));
    }
    const std::vector<disk::Node> nodes = nodesOn(device);
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        const std::string name = "/dev/" + node->name;
        if (disk::canAnswer(node->name)) {
            sayNotWritten(name, writeBackDevice(name == device ? path : name));
        } else {
            COMMLOG(OS_LOG_WARN, "%s is not running: data not yet written to it is lost", name.c_str());
        }
    }
}

bool listDisks(std::set<std::string>& devices)
{
    CommandLines listing("lsscsi");
    if (!listing.started()) {
        return false;
    }
    for (std::string line; listing.next(line);) {
        if (const std::optional<std::string> device = disk::diskOfLine(line)) {
            devices.insert(*device);
        }
    }
    listing.sayIfNotRun();
    return true;
}

/** Removes the device if it is the wanted one; true when it did. */
bool remove(const std::string& device, const IsWanted& isWanted)
{
    if (!isWanted(disk::readIdentity(device)) || !prepareRemoval(device, device, isWanted)) {
        return false;
    }
    const std::string command = "echo 1 > /sys/block/" + disk::lastName(device) + "/device/delete";
    COMMLOG(OS_LOG_INFO, "delete disk cmd[%s]", command.c_str());
    const bool isRemoved = runCommand(command) == 0;
    tellStep(isRemoved ? HostEvent::REMOVED : HostEvent::REFUSED, device);
    return true;
}

void sayNothingRemoved(const char* label, const disk::DiskIdentity& wanted)
{
    COMMLOG(OS_LOG_WARN, "No device of %s %s was found on this host: none was removed.", label,
            wanted.lunId.c_str());
    for (const std::string& name : disk::disksWithWwn(wanted.wwn)) {
        COMMLOG(OS_LOG_WARN, "%s has its WWN, but does not answer with it and with that ID: it stays.",
                name.c_str());
        tellStep(HostEvent::REFUSED, "/dev/" + disk::lastName(name), "does not answer as the object");
    }
}

} // namespace

bool checkWwn(const std::string& wwn)
{
    const bool isPlain = disk::isPlainWwn(wwn);
    if (!isPlain) {
        COMMLOG(
            OS_LOG_ERROR,
            "The WWN [%s] cannot be one of a disk: no device is searched for or removed. Check the object "
            "on the array.",
            wwn.c_str());
    }
    return isPlain;
}

bool prepareRemoval(const std::string& path, const std::string& device, const IsWanted& isWanted)
{
    throwIfEnded();
    const disk::Uses uses = disk::usesOf(disk::lastName(device));
    nameUses(device, uses);
    flushAll(path, device, uses.unreached);
    const bool isStill = isWanted(disk::readIdentity(path));
    if (!isStill) {
        COMMLOG(OS_LOG_ERROR, "%s has changed or does not answer any more: it is not removed. Scan again.",
                device.c_str());
        tellStep(HostEvent::REFUSED, device, "has changed or does not answer any more");
    }
    return isStill;
}

bool removeDevices(const char* label, const disk::DiskIdentity& wanted)
{
    const auto isWanted = [&](const disk::DiskIdentity& identity) {
        return identity.wwn == wanted.wwn && identity.lunId == wanted.lunId;
    };
    bool again = true, removed = false;
    for (int pass = 0; pass < PASSES && again; ++pass) {
        std::set<std::string> devices;
        if (!listDisks(devices)) {
            return false;
        }
        again = false;
        for (const std::string& device : devices) {
            throwIfEnded();
            again = remove(device, isWanted) || again;
        }
        removed = removed || again;
    }
    if (!removed) {
        sayNothingRemoved(label, wanted);
    } else if (again) {
        COMMLOG(OS_LOG_WARN,
                "A device of %s %s was still there in the last of %d rounds: look whether it is gone.", label,
                wanted.lunId.c_str(), PASSES);
    }
    return true;
}

} // namespace ovra::tessel

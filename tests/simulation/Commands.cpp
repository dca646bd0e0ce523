// What a process of the host does to disks: by files of the kernel, by tools, and by asking them.

#include "simulation/Host.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <set>

namespace simulation {
namespace {

constexpr int EXITED_1 = 1 << 8;
constexpr int NOT_STARTED = -1;
constexpr Time SCRIPT_STEP = 20000;
constexpr Time UDEV_WAIT = 5 * SECOND;
constexpr Time SETTLING = 10 * SECOND;
constexpr Time GIVEN_UP = 215 * SECOND; // before a disk that hangs is

bool beginsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

/** What stands between two texts; empty: they do not stand there. */
std::string between(const std::string& text, const std::string& before, const std::string& behind)
{
    const size_t start = text.find(before);
    const size_t end = start == std::string::npos ? start : text.find(behind, start + before.size());
    return end == std::string::npos ? std::string()
                                    : text.substr(start + before.size(), end - start - before.size());
}

std::string processFolder(const Process& process)
{
    return "/proc/" + std::to_string(process.pid);
}

} // namespace

void Host::scanAll(bool mayRemove, int starter)
{
    for (const std::string& session : kernel.hosts()) {
        std::vector<std::string> names;
        for (const auto& [name, disk] : kernel.disks()) {
            if (disk.host == session) {
                names.push_back(name);
            }
        }
        for (const std::string& name : names) {
            Disk* const disk = kernel.find(name);
            if (mayRemove && disk != nullptr && (isHarmful() || kernel.unitOf(*disk).id.empty())) {
                note("the script removes " + name);
                judge.scriptRemoves(starter, *disk);
                kernel.remove(*disk);
            }
            scheduler.reach(Point::COMMAND);
        }
        kernel.scan(session);
        scheduler.wait(scheduler.now() + SCRIPT_STEP, nullptr);
    }
}

std::optional<std::string> Host::readFile(const std::string& path)
{
    if (!scheduler.reach(Point::READ)) {
        return std::nullopt;
    }
    const std::string name = between(path, "/sys/block/", "/device/state");
    const std::string address = between(path, "/sys/class/scsi_device/", "/device/state");
    const Disk* const disk = address.empty() ? kernel.find(name) : kernel.at(address);
    if (disk != nullptr) {
        judge.readsState(scheduler.current(), *disk);
    }
    return tree.read(path);
}

bool Host::writeFile(const std::string& path, const std::string& text)
{
    if (!scheduler.reach(Point::WRITE) || !tree.exists(path)) {
        errno = ENOENT;
        return false;
    }
    note(path + " < " + text);
    const std::string host = between(path, "/sys/class/scsi_host/host", "/scan");
    if (!host.empty()) {
        judge.scans(scheduler.current());
        kernel.scan(host);
        return true;
    }
    const std::string address = between(path, "/sys/class/scsi_device/", "/device/");
    const std::string name = between(path, "/sys/block/", "/device/");
    Disk* const disk = address.empty() ? kernel.find(name) : kernel.at(address);
    if (disk == nullptr) {
        errno = ENODEV;
        return false;
    }
    if (path.substr(path.rfind('/')) == "/delete") {
        judge.removes(scheduler.current(), *disk);
        kernel.remove(*disk);
    } else {
        kernel.rescan(*disk);
    }
    return true;
}

int Host::run(const std::string& command)
{
    if (!scheduler.reach(Point::COMMAND)) {
        return NOT_STARTED;
    }
    note("$ " + command);
    if (beginsWith(command, "which kxRescan") || beginsWith(command, "lsscsi | grep tmp-block")) {
        return EXITED_1;
    }
    if (beginsWith(command, "rescan-scsi-bus.sh")) {
        judge.scans(scheduler.current());
        judge.startsScript(scheduler.current());
        const bool mayRemove = beginsWith(command, "rescan-scsi-bus.sh -r ");
        const int starter = scheduler.current().pid;
        unsigned& scripts = m_scripts[starter];
        ++scripts;
        scheduler.start("script", [this, mayRemove, starter, &scripts] {
            scanAll(mayRemove, starter);
            --scripts;
        });
        return scheduler.wait(NEVER, [&scripts] { return scripts == 0; }) ? 0 : NOT_STARTED;
    }
    if (beginsWith(command, "udevadm control --ping")) {
        const bool isAtRest =
            scheduler.wait(scheduler.now() + SETTLING, [this] { return kernel.isUdevAtRest(); });
        return isAtRest ? 0 : EXITED_1;
    }
    if (command.find("udevadm wait --initialized=true") != std::string::npos) {
        const std::string name = between(command, " /dev/", " >/dev/null");
        const auto isNamed = [this, name] {
            const Disk* const disk = kernel.find(name);
            return disk != nullptr && disk->isNamed;
        };
        return scheduler.wait(scheduler.now() + UDEV_WAIT, isNamed) ? 0 : EXITED_1;
    }
    if (beginsWith(command, "answer=$(timeout ")) { // multipath -u: it takes every disk
        const bool isAskedWhetherItDoes = command.find("in 0*=?1?)") != std::string::npos;
        return isAskedWhetherItDoes ? 0 : EXITED_1;
    }
    if (command.find(" multipath -f ") != std::string::npos) {
        return removeMap(between(command, " multipath -f ", " >")) ? 0 : EXITED_1;
    }
    if (command.find(" multipathd resize map ") != std::string::npos) {
        Map* const map = multipath.find(between(command, " multipathd resize map ", " >"));
        if (map != nullptr) {
            multipath.resize(*map);
        }
        return map != nullptr ? 0 : EXITED_1;
    }
    if (command.find(" dmsetup message ") != std::string::npos) {
        return 0;
    }
    const std::string text = between(command, "echo ", " > ");
    if (!text.empty()) {
        return writeFile(command.substr(command.find(" > ") + 3), text == "1" ? text : "- - -") ? 0
                                                                                                : EXITED_1;
    }
    judge.find("a command that the model does not know: " + command);
    return NOT_STARTED;
}

bool Host::isOpen(const Map& map)
{
    const std::deque<Process>& processes = scheduler.processes();
    return std::any_of(processes.begin(), processes.end(), [&](const Process& process) {
        return std::any_of(process.open.begin(), process.open.end(),
                           [&](const auto& open) { return open.second.name == map.node; });
    });
}

/** Not one that is open. */
bool Host::removeMap(const std::string& name)
{
    const Map* const map = multipath.find(name);
    if (map == nullptr || isOpen(*map)) {
        return false;
    }
    judge.removes(scheduler.current(), *map);
    multipath.remove(name);
    return true;
}

std::string Host::print(const std::string& command)
{
    if (!scheduler.reach(Point::COMMAND)) {
        return std::string();
    }
    note("$ " + command);
    std::string text;
    if (command == "lsscsi") {
        for (const auto& [name, disk] : kernel.disks()) {
            text +=
                "[" + disk.address() + "]    disk    OVRA     TESSEL           0001  /dev/" + name + " \n";
        }
        return text;
    }
    if (command == "multipath -ll") {
        return multipath.listing();
    }
    if (command == "ls -al /dev/disk/by-id|grep -v part") {
        for (const std::string& link : tree.namesIn("/dev/disk/by-id")) {
            text += "lrwxrwxrwx 1 root root    9 May  1 10:20 " + link + " -> " +
                    tree.targetOf("/dev/disk/by-id/" + link).value_or("") + "\n";
        }
        return text;
    }
    judge.find("a command that the model does not know: " + command);
    return text;
}

Disk* Host::diskOf(const std::string& name)
{
    const Map* const map = multipath.find(name);
    return map != nullptr ? multipath.workingPath(*map) : kernel.find(name);
}

Host::Answer Host::inquire(const std::string& name)
{
    if (!scheduler.reach(Point::INQUIRY)) {
        return {};
    }
    Disk* disk = diskOf(name);
    const unsigned instance = disk != nullptr ? disk->instance : 0;
    if (disk != nullptr && !kernel.isUp(disk->host)) { // it hangs until the session is back, or given up
        const std::string host = disk->host;
        scheduler.wait(scheduler.now() + GIVEN_UP, [this, host] { return kernel.isUp(host); });
        disk = diskOf(name);
    }
    if (scheduler.current().isKilled || disk == nullptr || disk->instance != instance ||
        !kernel.isUp(disk->host)) {
        return {};
    }
    const Unit unit = kernel.unitOf(*disk);
    judge.asked(scheduler.current(), name, *disk, unit);
    note("asks " + name + ": " + (unit.id.empty() ? "nothing is there" : unit.wwn));
    return unit.id.empty() ? Answer{{}, true} : Answer{page83(unit), false};
}

int Host::openDevice(const std::string& path)
{
    std::string name = path.substr(path.rfind('/') + 1);
    const Map* const map = scheduler.reach(Point::READ) ? multipath.find(name) : nullptr;
    name = map != nullptr ? map->node : name;
    if (scheduler.current().isKilled || (map == nullptr && kernel.find(name) == nullptr)) {
        return -1;
    }
    Process& process = scheduler.current();
    const Disk* const disk = diskOf(name);
    process.open[++m_lastDescriptor] = {name, disk != nullptr ? disk->instance : 0, scheduler.now()};
    tree.link(processFolder(process) + "/fd/" + std::to_string(m_lastDescriptor), "/dev/" + name);
    return m_lastDescriptor;
}

void Host::closeDevice(int descriptor)
{
    Process& process = scheduler.current();
    process.open.erase(descriptor);
    tree.erase(processFolder(process) + "/fd/" + std::to_string(descriptor));
}

bool Host::flush(const std::string& disk)
{
    Disk* const found = scheduler.reach(Point::INQUIRY) ? diskOf(disk) : nullptr;
    if (found == nullptr || kernel.unitOf(*found).id.empty()) {
        return false;
    }
    judge.hasFlushed(scheduler.current(), *found);
    found->writtenAt = 0;
    return true;
}

void Host::write(const std::string& disk)
{
    Disk* const found = scheduler.reach(Point::INQUIRY) ? diskOf(disk) : nullptr;
    if (found != nullptr) {
        found->writtenAt = scheduler.now();
    }
}

} // namespace simulation

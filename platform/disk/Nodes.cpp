#include "ovra/disk/Nodes.h"

#include "ovra/disk/Files.h"
#include "ovra/disk/Names.h"
#include "ovra/disk/Page83.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace ovra::disk {
namespace {

constexpr const char* BLOCK = "/sys/block/";
constexpr const char* SCSI_DEVICES = "/sys/class/scsi_device/";
constexpr const char* STATE = "/device/state";
constexpr const char* RUNNING = "running";

void visit(const Node& found, const std::string& root, std::vector<Node>& nodes)
{
    const auto isSame = [&](const Node& node) { return node.name == found.name; };
    if (std::any_of(nodes.begin(), nodes.end(), isSame)) {
        return;
    }
    Node node = found;
    node.number = valueThere(node.folder + "/dev");
    node.mapped = valueThere(node.folder + "/dm/name");
    nodes.push_back(node);
    for (const std::string& holder : namesThere(node.folder + "/holders")) {
        visit({holder, std::string(root).append(BLOCK).append(holder), "", "", node.name}, root, nodes);
    }
    for (const std::string& name : namesThere(node.folder)) {
        const std::string folder = std::string(node.folder).append("/").append(name);
        if (isThere(folder + "/partition")) {
            visit({name, folder, "", "", ""}, root, nodes);
        }
    }
}

/** "naa.6001..." as the kernel spells it, without the name of its kind. */
std::string kernelIdentity(const std::string& folder)
{
    const std::string text = valueOf(folder + "/wwid");
    const size_t dot = text.find('.');
    return dot == std::string::npos ? text : text.substr(dot + 1);
}

std::string stateFileOf(const std::string& disk, const std::string& root)
{
    return std::string(root).append(BLOCK).append(disk).append(STATE);
}

/**
 * What the kernel says of a SCSI disk, or of that of a partition: "running", "offline", "transport-offline"
 * ...; empty when nothing.
 */
std::string stateOf(const std::string& disk, const std::string& root)
{
    const std::string state = valueThere(stateFileOf(disk, root));
    return !state.empty() ? state
                          : valueThere(root + "/sys/class/block/" + disk + "/.." + STATE); // a partition
}

/** As canAnswer; throws Unreadable where that cannot be told. */
bool isAlive(const std::string& name, const std::string& root)
{
    const std::string state = stateOf(name, root);
    if (!state.empty()) {
        return state == RUNNING;
    }
    const std::string slaves = root + BLOCK + name + "/slaves/";
    const std::vector<std::string> below = namesThere(slaves);
    const auto answers = [&](const std::string& one) { // a removed one leaves its link until it is let go
        return isThere(slaves + one) && isAlive(one, root);
    };
    const std::string kind = valueThere(root + BLOCK + name + "/dm/uuid");
    if (kind.compare(0, std::strlen(MULTIPATH_UUID), MULTIPATH_UUID) == 0) {
        // A map that has lost its paths may keep for ever what it is asked.
        return std::any_of(below.begin(), below.end(), answers);
    }
    if (!kind.empty()) { // a volume over several disks needs them all
        return std::all_of(below.begin(), below.end(), answers);
    }
    return below.empty() || std::any_of(below.begin(), below.end(), answers);
}

bool isSameText(const std::string& one, const std::string& other)
{
    return one.size() == other.size() &&
           std::equal(one.begin(), one.end(), other.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

} // namespace

std::vector<Node> nodesOn(const std::string& disk, const std::string& root)
{
    std::vector<Node> nodes;
    visit({disk, root + BLOCK + disk, "", "", ""}, root, nodes);
    return nodes;
}

bool canAnswer(const std::string& name, const std::string& root)
{
    try {
        return isAlive(name, root);
    } catch (const Unreadable&) {
        return true;
    }
}

std::vector<std::string> disksNotRunning(const std::string& root)
{
    std::vector<std::string> disks;
    const auto consider = [&](const std::string& name, const std::string& state) {
        if (!state.empty() && state != RUNNING) {
            disks.push_back(std::string(name).append(" is ").append(state));
        }
    };
    for (const std::string& name : namesThere(root + BLOCK)) {
        consider(name, isDiskName(name) ? valueThere(stateFileOf(name, root)) : std::string());
    }
    for (const std::string& address : namesThere(root + SCSI_DEVICES)) {
        const std::string folder = std::string(root).append(SCSI_DEVICES).append(address).append("/device");
        consider("the device at " + address,
                 namesThere(folder + "/block").empty() ? valueThere(folder + "/state") : std::string());
    }
    return disks;
}

std::vector<std::string> disksWithWwn(const std::string& wwn, const std::string& root)
{
    std::vector<std::string> disks;
    for (const std::string& name : namesIn(wwn.empty() ? std::string() : root + BLOCK)) {
        const std::string folder = std::string(root).append(BLOCK).append(name).append("/device");
        std::vector<std::string> identities = unitDesignators(contentOf(folder + "/vpd_pg83"));
        identities.push_back(kernelIdentity(folder));
        if (std::any_of(identities.begin(), identities.end(),
                        [&](const std::string& identity) { return isSameText(identity, wwn); })) {
            disks.push_back(name);
        }
    }
    return disks;
}

} // namespace ovra::disk

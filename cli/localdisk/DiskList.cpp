#include "disk/DiskJson.h"
#include "localdisk/HostDisks.h"
#include "output/Table.h"
#include "text/Display.h"
#include "text/Numbers.h"
#include "text/Words.h"

namespace tesselctl {
namespace {

std::string orDash(const std::string& text)
{
    return text.empty() ? "-" : printable(text);
}

TableLine lineOf(const HostDisk& disk)
{
    std::vector<std::string> paths;
    for (const auto& path : disk.paths) {
        paths.push_back(path.name + " " + path.state);
    }
    const Attachable* kind = disk.object.kind;
    return {printable(disk.device),
            humanSize(disk.bytes),
            kind == nullptr ? "-" : printable(kind->called(disk.identity.lunId)),
            orDash(disk.object.name),
            disk.object.isShown ? "yes" : "no",
            orDash(disk.identity.wwn),
            printable(joined(paths)),
            orDash(joined(disk.uses, "; "))};
}

Json::Value orNull(const std::string& text)
{
    return text.empty() ? Json::Value() : Json::Value(validUtf8(text));
}

Json::Value jsonOf(const HostDisk& disk)
{
    const Attachable* kind = disk.object.kind;
    Json::Value json(Json::objectValue);
    json["path"] = validUtf8(disk.device);
    json["size"] = Json::UInt64(disk.bytes);
    json["wwn"] = orNull(disk.identity.wwn);
    json["object"] = kind == nullptr ? Json::Value() : Json::Value(kind->title);
    json["id"] = kind == nullptr ? Json::Value() : Json::Value(disk.identity.lunId);
    json["name"] = orNull(disk.object.name);
    json["shown"] = disk.object.isShown;
    json["paths"] = Json::Value(Json::arrayValue);
    for (const auto& path : disk.paths) {
        json["paths"].append(pathJson("/dev/" + path.name, path.address, path.state));
    }
    json["uses"] = Json::Value(Json::arrayValue);
    for (const std::string& use : disk.uses) {
        json["uses"].append(validUtf8(use));
    }
    return json;
}

void list(Context& context)
{
    const HostDisks found = disksOfArray(context.session());
    std::vector<TableLine> lines;
    Json::Value json(Json::arrayValue);
    for (const HostDisk& disk : found.disks) {
        lines.push_back(lineOf(disk));
        json.append(jsonOf(disk));
    }
    if (!found.unknown.empty()) {
        context.printer().note("not every use of a disk can be told: " +
                               joined({found.unknown.begin(), found.unknown.end()}));
    }
    context.printer().result(
        lines.empty()
            ? "No disks.\n"
            : Table({"DEVICE", "SIZE", "OBJECT", "NAME", "SHOWN", "WWN", "PATHS", "USES"}).part(lines),
        json);
}

} // namespace

Commands diskListCommands()
{
    return {{{"disk", "list"},
             "list the disks that this host has of the array, without a rescan",
             {},
             {},
             {},
             list}};
}

} // namespace tesselctl

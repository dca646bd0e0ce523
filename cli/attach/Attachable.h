#ifndef ATTACH_ATTACHABLE_H
#define ATTACH_ATTACHABLE_H

#include "frame/Context.h"

#include <functional>
#include <string>
#include <vector>

namespace tesselctl {

/** What can be attached to a host, LUN or snapshot, and the SDK's calls for it. */
struct Attachable
{
    std::string word;  ///< in commands: "lun"
    std::string title; ///< in sentences: "LUN"
    MOType type;
    std::string (CDiskScannerHandler::*scan)(std::string&);
    void (CDiskScannerHandler::*removeDevices)(std::string&);
    /** Its WWN; throws NotFound where the array does not know the ID. */
    std::function<std::string(Session&, const std::string& id)> wwn;
    std::function<std::string(Session&, const std::string& id)> name;
    std::function<bool(Session&, const std::string& id, const std::string& host)> isSeenByHost;
    std::function<std::vector<LunGroupMO>(Session&, const std::string& id)> groups;
    /** Takes it out of a LUN group; tells no failure. */
    std::function<void(Session&, const std::string& id, const std::string& lunGroup)> leave;

    Argument idArgument() const { return {"ID", "ID of the " + title, {}}; }
    ovra::tessel::StorageObject storage(const std::string& id) const { return {type, id}; }
    std::string called(const std::string& id) const { return title + " " + id; }
};

/** LUN and snapshot. */
const std::vector<Attachable>& attachables();

/** A command for each of them: {"attach", "lun"} and {"attach", "snapshot"}. */
Commands forEachAttachable(const std::string& verb, const std::string& summary,
                           const std::vector<Option>& options, void (*run)(Context&, const Attachable&));

} // namespace tesselctl

#endif

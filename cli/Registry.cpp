#include "kernel/Command.h"

#include "objects/Tables.h"
#include "session/Session.h"

namespace tesselctl {

Commands diskCommands();
Commands diskListCommands();
Commands attachCommands();
Commands detachCommands();
Commands deviceCommands();
Commands tidyCommands();
Commands explainCommands();
Commands topologyCommands();
Commands doctorCommands();
Commands logCommands();
Commands metricsCommands();
Commands pingCommands();
Commands referenceCommands();
Commands fingerprintCommands();

Commands together(const std::vector<Commands>& lists)
{
    Commands all;
    for (const auto& list : lists) {
        all.insert(all.end(), list.begin(), list.end());
    }
    return all;
}

const std::vector<CommandGroup>& commandGroups()
{
    static const std::vector<CommandGroup> groups = {
        {{"disk"}, "LUNs and snapshots as disks of this host"},
        {{"disk", "attach"}, "make a LUN or snapshot a disk of this host"},
        {{"disk", "release"}, "take the disk of a LUN or snapshot away again"},
        {{"disk", "verify"}, "prove that a disk of this host is a LUN or snapshot"},
        {{"lun"}, "LUNs"},
        {{"snapshot"}, "snapshots"},
        {{"lungroup"}, "LUN groups and their members"},
        {{"host"}, "hosts"},
        {{"hostgroup"}, "host groups and their members"},
        {{"initiator"}, "initiators of hosts"},
        {{"initiator", "iscsi"}, "iSCSI initiators"},
        {{"initiator", "fc"}, "Fibre Channel initiators"},
        {{"view"}, "mapping views: which hosts see which LUNs"},
        {{"port"}, "ports of the array"},
        {{"port", "fc"}, "Fibre Channel ports"},
        {{"port", "fcoe"}, "FCoE ports"},
        {{"port", "eth"}, "Ethernet ports"},
        {{"attach"}, "make a LUN or snapshot visible to a host"},
        {{"detach"}, "take a LUN or snapshot away from a host"},
        {{"scan"}, "find the device of a LUN or snapshot on this host"},
        {{"remove"}, "remove the devices of a LUN or snapshot from this host"},
        {{"explain"}, "tell why a host sees a LUN or snapshot, or why not"},
    };
    return groups;
}

const Commands& allCommands()
{
    static const Commands commands = together({
        diskCommands(),        diskListCommands(),    lunCommands(),       snapshotCommands(),
        lunGroupCommands(),    hostCommands(),        hostGroupCommands(), iscsiInitiatorCommands(),
        fcInitiatorCommands(), viewCommands(),        portCommands(),      attachCommands(),
        detachCommands(),      deviceCommands(),      tidyCommands(),      explainCommands(),
        topologyCommands(),    logCommands(),         metricsCommands(),   doctorCommands(),
        pingCommands(),        fingerprintCommands(), referenceCommands(),
    });
    return commands;
}

const std::vector<Option>& globalOptions()
{
    static const std::vector<Option> options = [] {
        std::vector<Option> all = {{"--output", "FORM", "text (default) or json", false, {"text", "json"}}};
        const auto connection = connectionOptions();
        all.insert(all.end(), connection.begin(), connection.end());
        return all;
    }();
    return options;
}

} // namespace tesselctl

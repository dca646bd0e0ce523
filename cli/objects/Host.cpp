#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

constexpr uint32_t HIGHEST_SYSTEM_CODE = 255;

Inputs<HostMO> newHost()
{
    return {
        textInput("--name", "NAME", "name of the host", &HostMO::NAME).required(),
        numberInput("--os", "CODE", "operating system, the array's code", &HostMO::OPERATIONSYSTEM,
                    HIGHEST_SYSTEM_CODE),
        textInput("--id", "ID", "ID to be given to it; the array chooses otherwise", &HostMO::ID),
        textInput("--ip", "IP", "address of the host", &HostMO::IP),
        textInput("--location", "TEXT", "where it stands", &HostMO::LOCATION),
        textInput("--description", "TEXT", "description", &HostMO::DESCRIPTION),
        textInput("--hostgroup", "ID", "host group that it is to belong to", &HostMO::PARENTID),
    };
}

void complete(Context&, HostMO& host)
{
    if (!host.PARENTID.empty()) {
        host.PARENTTYPE = MO_HOSTGROUP;
    }
}

} // namespace

Commands hostCommands()
{
    const ObjectKind host{{"host"}, "host", "ID", {}};
    return {
        createCommand(host, newHost(), &CHostHandler::createHost, {}, complete),
        showCommand(host, &CHostHandler::getHost),
    };
}

} // namespace tesselctl

#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

Inputs<FCInitiatorMO> newInitiator()
{
    return {
        textInput("--name", "NAME", "display name", &FCInitiatorMO::NAME),
        textInput("--host", "ID", "host to bind it to", &FCInitiatorMO::PARENTID),
    };
}

} // namespace

Commands fcInitiatorCommands()
{
    using Handler = CFCInitiatorHandler;
    const ObjectKind initiator{{"initiator", "fc"}, "FC initiator", "WWPN", {}};
    return {
        createCommand(initiator, newInitiator(), &Handler::createFCInitiator, {initiator.idArgument()}),
        showCommand(initiator, &Handler::getFCInitiator),
        deleteCommand(initiator, &Handler::deleteFCInitiator),
        bindCommand(initiator, &Handler::addFCInitiatorToHost),
        actionCommand(initiator, "remove", "unbind an FC initiator from its host", "unbound from its host",
                      &Handler::removeFCInitiatorFromHost),
    };
}

} // namespace tesselctl

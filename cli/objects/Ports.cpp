#include "objects/Listing.h"
#include "objects/Operations.h"
#include "objects/Tables.h"

namespace tesselctl {
namespace {

template <class Record>
Inputs<Record> filters()
{
    return {
        textInput("--id", "ID", "only the one with this ID", &Record::ID),
        textInput("--name", "NAME", "only those with this name", &Record::NAME),
        numberInput("--logic-type", "CODE", "only those of this use, the array's code", &Record::LOGICTYPE),
    };
}

template <class Query, class Record, class Handler>
Commands commandsOf(const ObjectKind& kind, Record (Handler::*get)(const std::string&),
                    std::vector<Record> (Handler::*list)(Query&))
{
    return {showCommand(kind, get), listCommand<Record, Query>(kind, {everything(list)}, filters<Record>())};
}

} // namespace

Commands portCommands()
{
    const ObjectKind fc{
        {"port", "fc"}, "FC port", "ID", {"ID", "NAME", "LOCATION", "RUNNINGSTATUS", "RUNSPEED", "WWN"}};
    const ObjectKind fcoe{
        {"port", "fcoe"}, "FCoE port", "ID", {"ID", "NAME", "LOCATION", "RUNNINGSTATUS", "RUNSPEED", "WWN"}};
    const ObjectKind eth{{"port", "eth"},
                         "Ethernet port",
                         "ID",
                         {"ID", "NAME", "LOCATION", "RUNNINGSTATUS", "IPV4ADDRESS", "SPEED"}};
    return together({commandsOf(fc, &CFCPortHandler::getFCPort, &CFCPortHandler::getFCPortBatch),
                     commandsOf(fcoe, &CFCoEPortHandler::getFCoEPort, &CFCoEPortHandler::getFCoEPortBatch),
                     commandsOf(eth, &CETHPortHandler::getETHPort, &CETHPortHandler::getETHPortBatch)});
}

} // namespace tesselctl

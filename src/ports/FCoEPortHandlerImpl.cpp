#include "ports/FCoEPortHandlerImpl.h"

#include "ports/PortFields.h"

using namespace ovra::tessel;

FCoEPortMO CFCoEPortHandlerImpl::getFCoEPort(const std::string& fcoePortID)
{
    return readById<FCoEPortMO>("getFCoEPort", "/FCoE_PORT/", fcoePortID,
                                {kinds::FCOEPORT, "fcoePortID is empty! "});
}

std::vector<FCoEPortMO> CFCoEPortHandlerImpl::getFCoEPortBatch(FCoEPortQuery& query)
{
    return run("getFCoEPortBatch", [&](Operation& op) {
        return listAll(op, "/FCoE_PORT?", query, &CFCoEPortHandler::getFCoEPort);
    });
}

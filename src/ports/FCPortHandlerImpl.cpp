#include "ports/FCPortHandlerImpl.h"

#include "ports/PortFields.h"

using namespace ovra::tessel;

FCPortMO CFCPortHandlerImpl::getFCPort(const std::string& fcPortID)
{
    return readById<FCPortMO>("getFCPort", "/FC_PORT/", fcPortID, {kinds::FCPORT, "fcPortID is empty! "});
}

std::vector<FCPortMO> CFCPortHandlerImpl::getFCPortBatch(FCPortQuery& query)
{
    return run("getFCPortBatch",
               [&](Operation& op) { return listAll(op, "/FC_PORT?", query, &CFCPortHandler::getFCPort); });
}

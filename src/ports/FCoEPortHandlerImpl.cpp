#include "ports/FCoEPortHandlerImpl.h"

#include "ports/FCoEPortFields.h"

using namespace ovra::tessel;

namespace {

constexpr const char* RESOURCE = "/FCoE_PORT";

} // namespace

FCoEPortMO CFCoEPortHandlerImpl::getFCoEPort(const std::string& fcoePortID)
{
    return readPort("getFCoEPort", RESOURCE, fcoePortID, "fcoePortID is empty! ");
}

std::vector<FCoEPortMO> CFCoEPortHandlerImpl::getFCoEPortBatch(FCoEPortQuery& query)
{
    return readBatch("getFCoEPortBatch", RESOURCE, query, &CFCoEPortHandler::getFCoEPort);
}

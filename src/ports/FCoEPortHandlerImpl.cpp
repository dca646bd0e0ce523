#include "ports/FCoEPortHandlerImpl.h"

#include "ports/FCoEPortFields.h"
#include "ports/PortOperations.h"

using namespace ovra::tessel;

namespace {

const char* const RESOURCE = "/FCoE_PORT";

} // namespace

FCoEPortMO CFCoEPortHandlerImpl::getFCoEPort(const std::string& fcoePortID)
{
    return ports::readOne<FCoEPortMO>("getFCoEPort", m_pDeviceManager, RESOURCE, fcoePortID,
                                      "fcoePortID is empty! ");
}

std::vector<FCoEPortMO> CFCoEPortHandlerImpl::getFCoEPortBatch(FCoEPortQuery& query)
{
    return ports::readBatch("getFCoEPortBatch", m_pDeviceManager, RESOURCE, query,
                            [&](const std::string& id) { return getFCoEPort(id); });
}

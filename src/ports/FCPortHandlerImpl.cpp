#include "ports/FCPortHandlerImpl.h"

#include "ports/FCPortFields.h"
#include "ports/PortOperations.h"

using namespace ovra::tessel;

namespace {

const char* const RESOURCE = "/FC_PORT";

} // namespace

FCPortMO CFCPortHandlerImpl::getFCPort(const std::string& fcPortID)
{
    return ports::readOne<FCPortMO>("getFCPort", m_pDeviceManager, RESOURCE, fcPortID, "fcPortID is empty! ");
}

std::vector<FCPortMO> CFCPortHandlerImpl::getFCPortBatch(FCPortQuery& query)
{
    return ports::readBatch("getFCPortBatch", m_pDeviceManager, RESOURCE, query,
                            [&](const std::string& id) { return getFCPort(id); });
}

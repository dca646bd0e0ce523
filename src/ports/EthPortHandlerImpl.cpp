#include "ports/EthPortHandlerImpl.h"

#include "ports/EthPortFields.h"
#include "ports/PortOperations.h"

using namespace ovra::tessel;

namespace {

const char* const RESOURCE = "/ETH_PORT";

} // namespace

ETHPortMO CEthPortHandlerImpl::getETHPort(const std::string& ethPortID)
{
    return ports::readOne<ETHPortMO>("getETHPort", m_pDeviceManager, RESOURCE, ethPortID,
                                     "ethPortID is empty! ");
}

std::vector<ETHPortMO> CEthPortHandlerImpl::getETHPortBatch(ETHPortQuery& query)
{
    return ports::readBatch("getETHPortBatch", m_pDeviceManager, RESOURCE, query,
                            [&](const std::string& id) { return getETHPort(id); });
}

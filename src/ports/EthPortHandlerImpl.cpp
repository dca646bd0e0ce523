#include "ports/EthPortHandlerImpl.h"

#include "ports/EthPortFields.h"

using namespace ovra::tessel;

namespace {

constexpr const char* RESOURCE = "/ETH_PORT";

} // namespace

ETHPortMO CEthPortHandlerImpl::getETHPort(const std::string& ethPortID)
{
    return readPort("getETHPort", RESOURCE, ethPortID, "ethPortID is empty! ");
}

std::vector<ETHPortMO> CEthPortHandlerImpl::getETHPortBatch(ETHPortQuery& query)
{
    return readBatch("getETHPortBatch", RESOURCE, query, &CETHPortHandler::getETHPort);
}

#include "ports/EthPortHandlerImpl.h"

#include "ports/PortFields.h"

using namespace ovra::tessel;

ETHPortMO CEthPortHandlerImpl::getETHPort(const std::string& ethPortID)
{
    return readById<ETHPortMO>("getETHPort", "/ETH_PORT/", ethPortID,
                               {kinds::ETHPORT, "ethPortID is empty! "});
}

std::vector<ETHPortMO> CEthPortHandlerImpl::getETHPortBatch(ETHPortQuery& query)
{
    return run("getETHPortBatch",
               [&](Operation& op) { return listAll(op, "/ETH_PORT?", query, &CETHPortHandler::getETHPort); });
}

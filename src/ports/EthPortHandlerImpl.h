#ifndef PORTS_ETHPORTHANDLERIMPL_H
#define PORTS_ETHPORTHANDLERIMPL_H

#include "ports/PortHandlerOf.h"

#include <tessel/ETHPort.h>

class CEthPortHandlerImpl : public ovra::tessel::PortHandlerOf<CETHPortHandler, ETHPortMO, ETHPortQuery>
{
public:
    using PortHandlerOf::PortHandlerOf;

    ETHPortMO getETHPort(const std::string& ethPortID) override;
    std::vector<ETHPortMO> getETHPortBatch(ETHPortQuery& query) override;
};

#endif

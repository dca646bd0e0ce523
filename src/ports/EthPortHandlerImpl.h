#ifndef PORTS_ETHPORTHANDLERIMPL_H
#define PORTS_ETHPORTHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/ETHPort.h>

/** The name: docs/oddities.md#ethport */
class CEthPortHandlerImpl : public ovra::tessel::HandlerOf<CETHPortHandler>
{
public:
    using HandlerOf::HandlerOf;

    ETHPortMO getETHPort(const std::string& ethPortID) override;
    std::vector<ETHPortMO> getETHPortBatch(ETHPortQuery& query) override;
};

#endif

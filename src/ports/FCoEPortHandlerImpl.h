#ifndef PORTS_FCOEPORTHANDLERIMPL_H
#define PORTS_FCOEPORTHANDLERIMPL_H

#include "ports/PortHandlerOf.h"

#include <tessel/FCoEPort.h>

class CFCoEPortHandlerImpl : public ovra::tessel::PortHandlerOf<CFCoEPortHandler, FCoEPortMO, FCoEPortQuery>
{
public:
    using PortHandlerOf::PortHandlerOf;

    FCoEPortMO getFCoEPort(const std::string& fcoePortID) override;
    std::vector<FCoEPortMO> getFCoEPortBatch(FCoEPortQuery& query) override;
};

#endif

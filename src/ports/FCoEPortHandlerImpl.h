#ifndef PORTS_FCOEPORTHANDLERIMPL_H
#define PORTS_FCOEPORTHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/FCoEPort.h>

class CFCoEPortHandlerImpl : public ovra::tessel::HandlerOf<CFCoEPortHandler>
{
public:
    using HandlerOf::HandlerOf;

    FCoEPortMO getFCoEPort(const std::string& fcoePortID) override;
    std::vector<FCoEPortMO> getFCoEPortBatch(FCoEPortQuery& query) override;
};

#endif

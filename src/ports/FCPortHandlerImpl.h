#ifndef PORTS_FCPORTHANDLERIMPL_H
#define PORTS_FCPORTHANDLERIMPL_H

#include "ports/PortHandlerOf.h"

#include <tessel/FCPort.h>

class CFCPortHandlerImpl : public ovra::tessel::PortHandlerOf<CFCPortHandler, FCPortMO, FCPortQuery>
{
public:
    using PortHandlerOf::PortHandlerOf;

    FCPortMO getFCPort(const std::string& fcPortID) override;
    std::vector<FCPortMO> getFCPortBatch(FCPortQuery& query) override;
};

#endif

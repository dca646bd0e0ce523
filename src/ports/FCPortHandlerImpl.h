#ifndef PORTS_FCPORTHANDLERIMPL_H
#define PORTS_FCPORTHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/FCPort.h>

class CFCPortHandlerImpl : public ovra::tessel::HandlerOf<CFCPortHandler>
{
public:
    using HandlerOf::HandlerOf;

    FCPortMO getFCPort(const std::string& fcPortID) override;
    std::vector<FCPortMO> getFCPortBatch(FCPortQuery& query) override;
};

#endif

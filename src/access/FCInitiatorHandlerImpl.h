#ifndef ACCESS_FCINITIATORHANDLERIMPL_H
#define ACCESS_FCINITIATORHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/FCInitiator.h>

class CFCInitiatorHandlerImpl : public ovra::tessel::HandlerOf<CFCInitiatorHandler>
{
public:
    using HandlerOf::HandlerOf;

    FCInitiatorMO createFCInitiator(FCInitiatorMO& initiator) override;
    void deleteFCInitiator(const std::string& fcInitiatorID) override;
    FCInitiatorMO getFCInitiator(const std::string& fcInitiatorID) override;
    void addFCInitiatorToHost(const std::string& fcInitiatorID, const std::string& hostID) override;
    void removeFCInitiatorFromHost(const std::string& fcInitiatorID) override;
};

#endif

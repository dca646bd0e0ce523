#ifndef ACCESS_ISCSIINITIATORHANDLERIMPL_H
#define ACCESS_ISCSIINITIATORHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/IscsiInitiator.h>

class CIscsiInitiatorHandlerImpl : public ovra::tessel::HandlerOf<CIscsiInitiatorHandler>
{
public:
    using HandlerOf::HandlerOf;

    IscsiInitiatorMO createIscsiInitiator(IscsiInitiatorMO& initiator) override;
    void deleteIscsiInitiator(const std::string& iscsiInitiatorID) override;
    void modifyIscsiInitiator(IscsiInitiatorMO& initiator) override;
    IscsiInitiatorMO getIscsiInitiator(const std::string& iscsiInitiatorID) override;
    void addIscsiInitiatorToHost(const std::string& iscsiInitiatorID, const std::string& hostID) override;
    void removeIscsiInitiatorFromHost(const std::string& iscsiInitiatorID) override;
};

#endif

#ifndef ACCESS_HOSTHANDLERIMPL_H
#define ACCESS_HOSTHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/Host.h>

class CHostHandlerImpl : public ovra::tessel::HandlerOf<CHostHandler>
{
public:
    using HandlerOf::HandlerOf;

    HostMO createHost(HostMO& host) override;
    HostMO getHost(const std::string& hostID) override;
};

#endif

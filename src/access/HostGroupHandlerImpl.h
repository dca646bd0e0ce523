#ifndef ACCESS_HOSTGROUPHANDLERIMPL_H
#define ACCESS_HOSTGROUPHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/HostGroup.h>

class CHostGroupHandlerImpl : public ovra::tessel::HandlerOf<CHostGroupHandler>
{
public:
    using HandlerOf::HandlerOf;

    HostGroupMO createHostGroup(HostGroupMO& hostGroup) override;
    void deleteHostGroup(const std::string& hostGroupID) override;
    HostGroupMO getHostGroup(const std::string& hostGroupID) override;
    void addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID) override;
    std::vector<HostGroupMO> getHostGroupByHost(const std::string& hostID, HostGroupQuery& query) override;
    HostGroupMO getHostGroupByMappingView(const std::string& mappingViewID) override;
    void removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID) override;
};

#endif

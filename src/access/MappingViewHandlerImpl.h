#ifndef ACCESS_MAPPINGVIEWHANDLERIMPL_H
#define ACCESS_MAPPINGVIEWHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/MappingView.h>

class CMappingViewHandlerImpl : public ovra::tessel::HandlerOf<CMappingViewHandler>
{
public:
    using HandlerOf::HandlerOf;

    MappingViewMO createMappingView(MappingViewMO& mappingView) override;
    void deleteMappingView(const std::string& mappingViewID) override;
    MappingViewMO getMappingView(const std::string& mappingViewID) override;
    void addLunGroupToMappingView(const std::string& lunGroupID, const std::string& mappingViewID) override;
    void removeLunGroupFromMappingView(const std::string& lunGroupID,
                                       const std::string& mappingViewID) override;
    void addHostGroupToMappingView(const std::string& hostGroupID, const std::string& mappingViewID) override;
    void removeHostGroupFromMappingView(const std::string& hostGroupID,
                                        const std::string& mappingViewID) override;
    std::vector<MappingViewMO> getMappingViewByLunGroup(const std::string& lunGroupID,
                                                        MappingViewQuery& query) override;
    std::vector<MappingViewMO> getMappingViewByHostGroup(const std::string& hostGroupID,
                                                         MappingViewQuery& query) override;

    // The workers behind the pairs of operations for LUN groups and host groups; failures name the caller.
    void associateWithMaskingView(const std::string& objID, const std::string& mappingViewID,
                                  unsigned long objType, const std::string& callerName);
    void removeAssociateFromMappingView(const std::string& objID, const std::string& mappingViewID,
                                        unsigned long objType, const std::string& callerName);
    std::vector<MappingViewMO> getMappingViewByCondition(const std::string& objID, MOType objType,
                                                         MappingViewQuery& query,
                                                         const std::string& callerName);
};

#endif

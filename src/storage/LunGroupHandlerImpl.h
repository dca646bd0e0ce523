#ifndef STORAGE_LUNGROUPHANDLERIMPL_H
#define STORAGE_LUNGROUPHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/LunGroup.h>

class CLunGroupHandlerImpl : public ovra::tessel::HandlerOf<CLunGroupHandler>
{
public:
    using HandlerOf::HandlerOf;

    LunGroupMO createLunGroup(LunGroupMO& lunGroup) override;
    void deleteLunGroup(const std::string& lunGroupID) override;
    LunGroupMO getLunGroup(const std::string& lunGroupID) override;
    void addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID) override;
    void removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID) override;
    std::vector<LunGroupMO> getLunGroupByLun(const std::string& lunID, LunGroupQuery& query) override;
    LunGroupMO getLunGroupByMappingView(const std::string& mappingViewID) override;
    void addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID) override;
    void removeSnapshotFromLunGroup(const std::string& snapshotID, const std::string& lunGroupID) override;
    std::vector<LunGroupMO> getLunGroupBySnapshot(const std::string& snapshotID,
                                                  LunGroupQuery& query) override;
    uint64_t getObjNOFromLunGroup(const std::string& lunGroupID) override;

    // The workers behind the pairs of operations for LUNs and snapshots; they check no arguments of their
    // own.
    void addObjToLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                          const std::string& callerName);
    void removeObjFromLunGroup(const std::string& objID, const std::string& lunGroupID, MOType objType,
                               const std::string& callerName);
    std::vector<LunGroupMO> getLunGroupByObjList(const std::string& objID, LunGroupQuery& query,
                                                 MOType objType, const std::string& callerName);
    uint64_t getCountByAssociate(const std::string& lunGroupID, const std::string& resourceName);
};

#endif

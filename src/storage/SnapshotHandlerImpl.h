#ifndef STORAGE_SNAPSHOTHANDLERIMPL_H
#define STORAGE_SNAPSHOTHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/Snapshot.h>

class CSnapshotHandlerImpl : public ovra::tessel::HandlerOf<CSnapshotHandler>
{
public:
    using HandlerOf::HandlerOf;

    SnapshotMO getSnapshot(const std::string& snapshotID) override;
    std::vector<SnapshotMO> getSnapshotByLunGroup(const std::string& lunGroupID,
                                                  SnapshotQuery& query) override;
    std::vector<SnapshotMO> getSnapshotByHost(const std::string& hostID, SnapshotQuery& query) override;
    std::vector<SnapshotMO> getSnapshotByCondition(const std::string& objID, MOType objType,
                                                   SnapshotQuery& query,
                                                   const std::string& interfaceName) override;
};

#endif

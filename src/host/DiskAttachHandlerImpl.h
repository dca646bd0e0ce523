#ifndef HOST_DISKATTACHHANDLERIMPL_H
#define HOST_DISKATTACHHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/DiskAttach.h>

class CMappingViewHandler;

class CDiskAttachHandlerImpl : public ovra::tessel::HandlerOf<CDiskAttachHandler>
{
public:
    using HandlerOf::HandlerOf;

    int attachLunToHost(const std::string& lunID, const std::string& iscsiInitiatorID,
                        const std::string& hostIP) override;
    int detachLunFromHost(const std::string& lunID, const std::string& iscsiInitiatorID) override;
    int attachSnapshotToHost(const std::string& snapshotID, const std::string& iscsiInitiatorID,
                             const std::string& hostIP) override;
    int detachSnapshotFromHost(const std::string& snapshotID, const std::string& iscsiInitiatorID) override;

    /** prefix, "_" and the time in whole seconds since the epoch: docs/oddities.md#names-by-the-clock */
    std::string getBuildedName(const std::string& prefix);

    /** Binds both groups to the view, or deletes it and says so: docs/oddities.md#unbound-view */
    void addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                        const std::string& mappingViewID, CMappingViewHandler* mappingViewHandler,
                        const std::string& callerName);
};

#endif

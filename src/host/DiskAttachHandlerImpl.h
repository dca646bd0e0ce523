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

    /** prefix, "_" and the time in whole seconds since the epoch. */
    std::string getBuildedName(const std::string& prefix);

    /** Binds both groups to the view; when that fails, deletes the view and says so only in the run log. */
    void addMappingView(const std::string& lunGroupID, const std::string& hostGroupID,
                        const std::string& mappingViewID, CMappingViewHandler* mappingViewHandler,
                        const std::string& callerName);
};

#endif

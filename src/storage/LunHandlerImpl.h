#ifndef STORAGE_LUNHANDLERIMPL_H
#define STORAGE_LUNHANDLERIMPL_H

#include "session/HandlerOf.h"

#include <tessel/Lun.h>

/** The tuning values of a new LUN; createLun always sends the defaults. */
struct CLunUserSettableFeature
{
    unsigned long writePolicy = 1;
    unsigned long mirrorPolicy = 1;
    unsigned long prefetchPolicy = 3;
    unsigned long prefetchValue = 0; ///< sent only with prefetch policy 1 or 2
    unsigned long dataTransferPolicy = 0;
    unsigned long initialDistributePolicy = 0;
    unsigned long reserved1 = 10; ///< not sent
    std::string reserved2;        ///< not sent
    uint32_t reserved3 = 0;       ///< not sent
};

class CLunHandlerImpl : public ovra::tessel::HandlerOf<CLunHandler>
{
public:
    using HandlerOf::HandlerOf;

    LunMO createLun(LunMO& lun) override;
    LunMO getLun(const std::string& lunID) override;
    std::vector<LunMO> getLunByLunGroup(const std::string& lunGroupID, LunQuery& query) override;
    std::vector<LunMO> getLunByHost(const std::string& hostID, LunQuery& query) override;

    /** The LUNs associated with any object; callerName is not used. */
    std::vector<LunMO> getLunByCondition(const std::string& associateObjID, MOType associateObjType,
                                         LunQuery& query, const std::string& callerName);
};

#endif

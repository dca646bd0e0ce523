#include "storage/LunHandlerImpl.h"

#include "session/Retry.h"
#include "session/Texts.h"
#include "storage/StorageFields.h"

using namespace ovra::tessel;

namespace {

constexpr unsigned int SECTOR_SHIFT = 9; // docs/oddities.md#sectors
constexpr uint32_t THIN = 1;
constexpr uint64_t MAX_USAGE_PERCENT = 100;
constexpr useconds_t SETTLE_MICROSECONDS = 200000; // a new LUN is seldom readable earlier

void addCapacities(Operation& op, const LunMO& lun)
{
    using Sectors = unsigned long long;
    op.add("CAPACITY", Sectors{lun.CAPACITY >> SECTOR_SHIFT});
    op.addIfSet("DESCRIPTION", lun.DESCRIPTION);
    op.add("ALLOCTYPE", lun.ALLOCTYPE == THIN ? 1 : 0); // docs/oddities.md#alloctype
    if (lun.ALLOCTYPE == THIN) {
        op.add("INITIALALLOCCAPACITY", Sectors{lun.ALLOCCAPACITY >> SECTOR_SHIFT});
        if (lun.THINCAPACITYUSAGE <= MAX_USAGE_PERCENT) {
            op.add("THINCAPACITYUSAGE", Sectors{lun.THINCAPACITYUSAGE});
        }
    }
}

void addTuning(Operation& op, const LunMO& lun)
{
    const CLunUserSettableFeature tuning;
    op.add("MIRRORPOLICY", tuning.mirrorPolicy);
    op.add("WRITEPOLICY", tuning.writePolicy);
    op.add("PREFETCHPOLICY", tuning.prefetchPolicy);
    if (tuning.prefetchPolicy == 1 || tuning.prefetchPolicy == 2) {
        op.add("PREFETCHVALUE", tuning.prefetchValue);
    }
    op.addIfSet("OWNINGCONTROLLER", lun.OWNINGCONTROLLER);
    op.add("DATATRANSFERPOLICY", tuning.dataTransferPolicy);
    op.add("INITIALDISTRIBUTEPOLICY", tuning.initialDistributePolicy);
}

} // namespace

LunMO CLunHandlerImpl::createLun(LunMO& lun)
{
    return run("createLun", [&](Operation& op) {
        op.addIfSet("ID", lun.ID);
        op.add("TYPE", int{MO_LUN});
        op.require(!lun.NAME.empty(), "Lun name is empty! ");
        op.add("NAME", lun.NAME);
        op.add("PARENTTYPE", int{MO_STORAGEPOOL});
        op.require(!lun.PARENTID.empty(), "ParentID is empty! ");
        op.add("PARENTID", lun.PARENTID);
        op.require(lun.CAPACITY != LunMO().CAPACITY,
                   "Capacity value is initial value"); // docs/oddities.md#no-blank
        addCapacities(op, lun);
        addTuning(op, lun);
        const std::string id = op.post("/lun").id();
        pauseFor(SETTLE_MICROSECONDS);
        return retryWhile({ARRAY_NOT_READY}, "retry get lun!", [&] { return getLun(id); });
    });
}

LunMO CLunHandlerImpl::getLun(const std::string& lunID)
{
    return readById<LunMO>("getLun", "/lun/", lunID, texts::LUN_ID);
}

std::vector<LunMO> CLunHandlerImpl::getLunByLunGroup(const std::string& lunGroupID, LunQuery& query)
{
    return run("getLunByLunGroup", [&](Operation& op) {
        op.requireId(lunGroupID, texts::LUNGROUP_ID);
        return getLunByCondition(lunGroupID, MO_LUNGROUP, query, op.name());
    });
}

std::vector<LunMO> CLunHandlerImpl::getLunByHost(const std::string& hostID, LunQuery& query)
{
    return run("getLunByHost", [&](Operation& op) {
        op.requireId(hostID, texts::HOST_ID);
        return getLunByCondition(hostID, MO_HOST, query, op.name());
    });
}

std::vector<LunMO> CLunHandlerImpl::getLunByCondition(const std::string& associateObjID,
                                                      MOType associateObjType, LunQuery& query,
                                                      const std::string&)
{
    return run("getLunByCondition", [&](Operation& op) {
        return list(op, associateObjType, associateObjID, query, &CLunHandler::getLun);
    });
}

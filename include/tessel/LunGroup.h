#ifndef TESSEL_LUNGROUP_H
#define TESSEL_LUNGROUP_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A LUN group: LUNs and snapshots that are presented to hosts as one unit. */
class TESSEL_API LunGroupMO
{
public:
    std::string ID;                 ///< the array's ID of the LUN group
    std::string NAME;               ///< unique among the array's LUN groups
    std::string DESCRIPTION;        ///< free text
    int32_t ISADD2MAPPINGVIEW = -1; ///< 1 in a mapping view, 0 not; -1: unset
    int32_t APPTYPE = 100;          ///< application type, the array's code; 100: unset
    uint64_t GROUPTYPE = 0;         ///< the array's code; not sent as it stands here
};

/** Which LUN groups to list: the set fields of filter, and a page. */
class TESSEL_API LunGroupQuery
{
public:
    /** Asks for everything. */
    LunGroupQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param lunGroup copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    LunGroupQuery(LunGroupMO& lunGroup, unsigned long startIndex, unsigned long pageSize)
        : filter(lunGroup), start(startIndex), count(pageSize)
    {
    }

    LunGroupMO filter;       ///< ID, NAME, ISADD2MAPPINGVIEW, APPTYPE count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Manages LUN groups and their members; CDeviceManager::getHandler(LUNGROUP_HANDLER). */
class TESSEL_API CLunGroupHandler : public CHandler
{
public:
    /**
     * Creates a LUN group and reads it back.
     * @param lunGroup NAME is required; ID, DESCRIPTION and APPTYPE are sent when set. An unset APPTYPE
     *        becomes 0, in the caller's record too. GROUPTYPE is always sent as 0.
     * @return the LUN group as the array holds it; with an empty ID when it was created but could not be read
     *         yet.
     */
    virtual LunGroupMO createLunGroup(LunGroupMO& lunGroup) = 0;

    /**
     * Deletes a LUN group.
     * @param lunGroupID ID of the LUN group; not empty.
     */
    virtual void deleteLunGroup(const std::string& lunGroupID) = 0;

    /**
     * Reads one LUN group.
     * @param lunGroupID ID of the LUN group; not empty.
     * @return the LUN group; with an empty ID when the array answers without one.
     */
    virtual LunGroupMO getLunGroup(const std::string& lunGroupID) = 0;

    /**
     * Adds a LUN; failures of the request are logged as warnings and not thrown.
     * @param lunID ID of the LUN; not empty.
     * @param lunGroupID ID of the LUN group; not empty.
     */
    virtual void addLunToLunGroup(const std::string& lunID, const std::string& lunGroupID) = 0;

    /**
     * Removes a LUN; failures of the request are logged as warnings and not thrown.
     * @param lunID ID of the LUN; not empty.
     * @param lunGroupID ID of the LUN group; not empty.
     */
    virtual void removeLunFromLunGroup(const std::string& lunID, const std::string& lunGroupID) = 0;

    /**
     * Lists the LUN groups that hold a LUN; one request, and one more for each LUN group.
     * @param lunID ID of the LUN; not empty.
     * @param query filter and page; not changed.
     * @return the LUN groups in the array's order.
     */
    virtual std::vector<LunGroupMO> getLunGroupByLun(const std::string& lunID, LunGroupQuery& query) = 0;

    /**
     * Reads the LUN group of a mapping view.
     * @param mappingViewID ID of the mapping view; not empty.
     * @return the LUN group; with an empty ID when the mapping view has none.
     */
    virtual LunGroupMO getLunGroupByMappingView(const std::string& mappingViewID) = 0;

    /**
     * Adds a snapshot; failures of the request are logged as warnings and not thrown.
     * @param snapshotID ID of the snapshot; not empty.
     * @param lunGroupID ID of the LUN group; not empty.
     */
    virtual void addSnapshotToLunGroup(const std::string& snapshotID, const std::string& lunGroupID) = 0;

    /**
     * Removes a snapshot; failures of the request are logged as warnings and not thrown.
     * @param snapshotID ID of the snapshot; not empty.
     * @param lunGroupID ID of the LUN group; not empty.
     */
    virtual void removeSnapshotFromLunGroup(const std::string& snapshotID, const std::string& lunGroupID) = 0;

    /**
     * Lists the LUN groups that hold a snapshot; one request, and one more for each LUN group.
     * @param snapshotID ID of the snapshot; not empty.
     * @param query filter and page; not changed.
     * @return the LUN groups in the array's order.
     */
    virtual std::vector<LunGroupMO> getLunGroupBySnapshot(const std::string& snapshotID,
                                                          LunGroupQuery& query) = 0;

    /**
     * Counts the members of a LUN group. An answer without a decimal count is a failure, never 0.
     * @param lunGroupID ID of the LUN group; not empty.
     * @return how many LUNs and snapshots are in it, together.
     */
    virtual uint64_t getObjNOFromLunGroup(const std::string& lunGroupID) = 0;
};

#endif

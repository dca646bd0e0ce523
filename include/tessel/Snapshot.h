#ifndef TESSEL_SNAPSHOT_H
#define TESSEL_SNAPSHOT_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A point-in-time copy of a LUN. */
class TESSEL_API SnapshotMO
{
public:
    /** A record in which nothing is set. */
    SnapshotMO() = default;
    /** A copy of another record. */
    SnapshotMO(const SnapshotMO&) = default;
    /** @return this record, now a copy of another one. */
    SnapshotMO& operator=(const SnapshotMO&) = default;
    /** Takes what another record holds, which is then to be set anew. */
    SnapshotMO(SnapshotMO&&) = default;
    /** @return this record, now with what another one held. */
    SnapshotMO& operator=(SnapshotMO&&) = default;
    /** Virtual, so that it may be derived from. */
    virtual ~SnapshotMO() = default;

    std::string ID;                         ///< the array's ID of the snapshot
    std::string NAME;                       ///< unique among the array's snapshots
    int32_t PARENTTYPE = 0;                 ///< object type of the source
    std::string PARENTID;                   ///< ID of the source LUN
    std::string PARENTNAME;                 ///< name of the source LUN
    uint32_t HEALTHSTATUS = 0;              ///< the array's code; 0: unset
    uint32_t RUNNINGSTATUS = 0;             ///< the array's code; 0: unset
    std::string DESCRIPTION;                ///< free text
    uint64_t USERCAPACITY = UINT64_MAX;     ///< capacity in the array's units; all ones: not read
    uint64_t CONSUMEDCAPACITY = UINT64_MAX; ///< consumed capacity in the array's units; all ones: not read
    std::string WWN;                        ///< what the host sees in the disk's SCSI identity
};

/** Which snapshots to list: the set fields of filter, and a page. */
class TESSEL_API SnapshotQuery
{
public:
    /** Asks for everything. */
    SnapshotQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param snapshot copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    SnapshotQuery(SnapshotMO& snapshot, unsigned long startIndex, unsigned long pageSize)
        : filter(snapshot), start(startIndex), count(pageSize)
    {
    }
    /** A copy of another query. */
    SnapshotQuery(const SnapshotQuery&) = default;
    /** @return this query, now a copy of another one. */
    SnapshotQuery& operator=(const SnapshotQuery&) = default;
    /** Takes what another query holds, which is then to be set anew. */
    SnapshotQuery(SnapshotQuery&&) = default;
    /** @return this query, now with what another one held. */
    SnapshotQuery& operator=(SnapshotQuery&&) = default;
    /** Virtual, so that it may be derived from. */
    virtual ~SnapshotQuery() = default;

    SnapshotMO filter;       ///< ID, NAME, PARENTID, RUNNINGSTATUS, HEALTHSTATUS count
    unsigned long start = 0; ///< index of the first record
    unsigned long count =
        0; ///< number of records; 0: no range is asked for, the array answers its default page
};

/** Reads snapshots; CDeviceManager::getHandler(SNAPSHOT_HANDLER). */
class TESSEL_API CSnapshotHandler : public CHandler
{
public:
    /**
     * Reads one snapshot.
     * @param snapshotID ID of the snapshot; not empty.
     * @return the snapshot; with an empty ID when the array answers without one.
     */
    virtual SnapshotMO getSnapshot(const std::string& snapshotID) = 0;

    /**
     * Lists the snapshots of a LUN group; one request, and one more for each snapshot.
     * @param lunGroupID ID of the LUN group; not empty.
     * @param query filter and page; not changed.
     * @return the snapshots in the array's order.
     */
    virtual std::vector<SnapshotMO> getSnapshotByLunGroup(const std::string& lunGroupID,
                                                          SnapshotQuery& query) = 0;

    /**
     * Lists the snapshots that mapping views expose to a host; one request, and one more for each snapshot.
     * @param hostID ID of the host; not empty.
     * @param query filter and page; not changed.
     * @return the snapshots in the array's order.
     */
    virtual std::vector<SnapshotMO> getSnapshotByHost(const std::string& hostID, SnapshotQuery& query) = 0;

    /**
     * Lists the snapshots associated with any object.
     * @param objID ID of the object.
     * @param objType its type.
     * @param query filter and page; not changed.
     * @param interfaceName name under which failures and the interface record of the search are written.
     * @return the snapshots in the array's order.
     */
    virtual std::vector<SnapshotMO> getSnapshotByCondition(const std::string& objID, MOType objType,
                                                           SnapshotQuery& query,
                                                           const std::string& interfaceName) = 0;
};

#endif

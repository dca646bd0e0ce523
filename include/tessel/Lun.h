#ifndef TESSEL_LUN_H
#define TESSEL_LUN_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A LUN of the array. */
class TESSEL_API LunMO
{
public:
    /** A record in which nothing is set. */
    LunMO() = default;
    /** A copy of another record. */
    LunMO(const LunMO&) = default;
    /** @return this record, now a copy of another one. */
    LunMO& operator=(const LunMO&) = default;
    /** Takes what another record holds, which is then to be set anew. */
    LunMO(LunMO&&) = default;
    /** @return this record, now with what another one held. */
    LunMO& operator=(LunMO&&) = default;
    /** Virtual, so that it may be derived from. */
    virtual ~LunMO() = default;

    std::string ID;                      ///< the array's ID of the LUN, a decimal number as text
    std::string NAME;                    ///< unique among the array's LUNs
    uint32_t PARENTTYPE = 0;             ///< 216 (storage pool) once read
    std::string PARENTID;                ///< ID of the storage pool
    std::string PARENTNAME;              ///< name of the storage pool
    uint32_t HEALTHSTATUS = 0;           ///< the array's code; 0: unset
    uint32_t RUNNINGSTATUS = 0;          ///< the array's code; 0: unset
    std::string DESCRIPTION;             ///< free text
    uint32_t ALLOCTYPE = 100;            ///< 0 thick, 1 thin; 100: unset
    uint64_t CAPACITY = UINT64_MAX;      ///< bytes; all ones: unset
    uint64_t ALLOCCAPACITY = UINT64_MAX; ///< allocated bytes; on create, those of a thin LUN at first
    uint64_t ALLOCCAPACITYRAW = 0;       ///< allocated capacity in the array's sectors
    uint64_t THINCAPACITYUSAGE = 0;      ///< thin LUNs only, percent; on create, sent when below 101
    bool EXPOSEDTOINITIATOR = false;     ///< visible to at least one initiator
    std::string WWN;               ///< 32 hexadecimal digits; what the host sees in the disk's SCSI identity
    std::string OWNINGCONTROLLER;  ///< controller that the LUN belongs to, as the array names it
    std::string WORKINGCONTROLLER; ///< controller that serves the LUN at present; read only
    int32_t ISADD2LUNGROUP = -1;   ///< 1 member of a LUN group, 0 not; -1: unset
};

/** Which LUNs to list: the set fields of filter, and a page. */
class TESSEL_API LunQuery
{
public:
    /** Asks for everything. */
    LunQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param lun copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    LunQuery(LunMO& lun, unsigned long startIndex, unsigned long pageSize)
        : filter(lun), start(startIndex), count(pageSize)
    {
    }
    /** A copy of another query. */
    LunQuery(const LunQuery&) = default;
    /** @return this query, now a copy of another one. */
    LunQuery& operator=(const LunQuery&) = default;
    /** Takes what another query holds, which is then to be set anew. */
    LunQuery(LunQuery&&) = default;
    /** @return this query, now with what another one held. */
    LunQuery& operator=(LunQuery&&) = default;
    /** Virtual, so that it may be derived from. */
    virtual ~LunQuery() = default;

    LunMO filter; ///< ID, NAME, PARENTID, ALLOCTYPE, RUNNINGSTATUS, HEALTHSTATUS, ISADD2LUNGROUP count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Creates and reads LUNs; CDeviceManager::getHandler(LUN_HANDLER). */
class TESSEL_API CLunHandler : public CHandler
{
public:
    /**
     * Creates a LUN and reads it back.
     * @param lun NAME, PARENTID and CAPACITY (bytes, rounded down to 512) are required; ID, DESCRIPTION and
     *        OWNINGCONTROLLER are sent when set. ALLOCTYPE 1 makes a thin LUN, any other value a thick one.
     *        For a thin LUN ALLOCCAPACITY is always sent: set it, to 0 when nothing is allocated at first.
     * @return the LUN as the array holds it; with an empty ID when it was created but could not be read yet.
     */
    virtual LunMO createLun(LunMO& lun) = 0;

    /**
     * Reads one LUN.
     * @param lunID ID of the LUN; not empty.
     * @return the LUN; with an empty ID when the array answers without one.
     */
    virtual LunMO getLun(const std::string& lunID) = 0;

    /**
     * Lists the LUNs of a LUN group; one request, and one more for each LUN.
     * @param lunGroupID ID of the LUN group; not empty.
     * @param query filter and page; not changed.
     * @return the LUNs in the array's order.
     */
    virtual std::vector<LunMO> getLunByLunGroup(const std::string& lunGroupID, LunQuery& query) = 0;

    /**
     * Lists the LUNs that mapping views expose to a host; one request, and one more for each LUN.
     * @param hostID ID of the host; not empty.
     * @param query filter and page; not changed.
     * @return the LUNs in the array's order.
     */
    virtual std::vector<LunMO> getLunByHost(const std::string& hostID, LunQuery& query) = 0;
};

#endif

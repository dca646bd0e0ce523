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
    LunMO() = default;
    LunMO(const LunMO&) = default;
    LunMO& operator=(const LunMO&) = default;
    virtual ~LunMO() = default;

    std::string ID;
    std::string NAME;
    uint32_t PARENTTYPE = 0;    ///< 216 (storage pool) once read
    std::string PARENTID;       ///< ID of the storage pool
    std::string PARENTNAME;     ///< name of the storage pool
    uint32_t HEALTHSTATUS = 0;  ///< the array's code; 0: unset
    uint32_t RUNNINGSTATUS = 0; ///< the array's code; 0: unset
    std::string DESCRIPTION;
    uint32_t ALLOCTYPE = 100;       ///< 0 thick, 1 thin; 100: unset
    uint64_t CAPACITY = UINT64_MAX; ///< bytes; all ones: unset
    uint64_t ALLOCCAPACITY =
        UINT64_MAX;                  ///< allocated bytes; on create, initially allocated bytes of a thin LUN
    uint64_t ALLOCCAPACITYRAW = 0;   ///< allocated capacity in the array's sectors
    uint64_t THINCAPACITYUSAGE = 0;  ///< thin LUNs only, percent; on create, sent when below 101
    bool EXPOSEDTOINITIATOR = false; ///< visible to at least one initiator
    std::string WWN; ///< 32 hexadecimal digits; what the host sees in the disk's SCSI identity
    std::string OWNINGCONTROLLER;
    std::string WORKINGCONTROLLER;
    int32_t ISADD2LUNGROUP = -1; ///< 1 member of a LUN group, 0 not; -1: unset
};

/** Which LUNs to list: the set fields of filter, and a page. */
class TESSEL_API LunQuery
{
public:
    LunQuery() = default;
    LunQuery(LunMO& lun, unsigned long startIndex, unsigned long pageSize)
        : filter(lun), start(startIndex), count(pageSize)
    {
    }
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
     * @param lun NAME, PARENTID and CAPACITY (bytes, rounded down to 512) are required; ID, DESCRIPTION,
     * ALLOCTYPE, ALLOCCAPACITY, THINCAPACITYUSAGE and OWNINGCONTROLLER are sent when set. A value of
     * ALLOCTYPE other than 1 makes a thick LUN.
     * @return the LUN as the array holds it; with an empty ID when it was created but could not be read yet.
     */
    virtual LunMO createLun(LunMO& lun) = 0;

    /** Reads one LUN; a record with an empty ID when the array answers without one. */
    virtual LunMO getLun(const std::string& lunID) = 0;

    /** Lists the LUNs of a LUN group; one request, and one more for each LUN. */
    virtual std::vector<LunMO> getLunByLunGroup(const std::string& lunGroupID, LunQuery& query) = 0;

    /** Lists the LUNs that mapping views expose to a host; one request, and one more for each LUN. */
    virtual std::vector<LunMO> getLunByHost(const std::string& hostID, LunQuery& query) = 0;
};

#endif

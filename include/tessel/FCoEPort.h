#ifndef TESSEL_FCOEPORT_H
#define TESSEL_FCOEPORT_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** An FCoE port of the array. Read only. */
class TESSEL_API FCoEPortMO
{
public:
    std::string ID;                     ///< the array's ID of the port
    std::string NAME;                   ///< name of the port
    std::string LOCATION;               ///< position on the array
    uint32_t HEALTHSTATUS = 0;          ///< the array's code
    uint32_t RUNNINGSTATUS = 0;         ///< the array's code
    uint32_t LOGICTYPE = 100;           ///< the array's code of the port's use; 100: unset
    int64_t RUNSPEED = 0;               ///< speed in force, in the array's unit; 0 when it is not a number
    std::string WWN;                    ///< port WWN, 16 hexadecimal digits
    uint32_t INIORTGT = 0;              ///< works as initiator or target, the array's code
    uint64_t ERRORPACKETS = UINT64_MAX; ///< packets with errors; all ones: not read
    uint64_t LOSTPACKETS = UINT64_MAX;  ///< packets lost; all ones: not read
    uint64_t OVERFLOWEDPACKETS = UINT64_MAX; ///< packets for which there was no room; all ones: not read
    uint64_t STARTTIME = UINT64_MAX;         ///< start of the counters, epoch seconds; all ones: not read
    std::string VLANID;                      ///< VLAN of the port, as the array writes it
};

/** Which ports to list: the set fields of filter, and a page. */
class TESSEL_API FCoEPortQuery
{
public:
    /** Asks for everything. */
    FCoEPortQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param port copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    FCoEPortQuery(FCoEPortMO& port, unsigned long startIndex, unsigned long pageSize)
        : filter(port), start(startIndex), count(pageSize)
    {
    }

    FCoEPortMO filter;       ///< ID, NAME, LOGICTYPE count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Reads FCoE ports; CDeviceManager::getHandler(FCOEPORT_HANDLER). */
class TESSEL_API CFCoEPortHandler : public CHandler
{
public:
    /**
     * Reads one port.
     * @param fcoePortID ID of the port; not empty.
     * @return the port; with an empty ID when the array answers without one.
     */
    virtual FCoEPortMO getFCoEPort(const std::string& fcoePortID) = 0;

    /**
     * Lists the ports; one request, and one more for each port.
     * @param query filter and page; not changed.
     * @return the ports in the array's order.
     */
    virtual std::vector<FCoEPortMO> getFCoEPortBatch(FCoEPortQuery& query) = 0;
};

#endif

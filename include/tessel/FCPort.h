#ifndef TESSEL_FCPORT_H
#define TESSEL_FCPORT_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A Fibre Channel port of the array. Read only. */
class TESSEL_API FCPortMO
{
public:
    std::string ID;                      ///< the array's ID of the port
    std::string NAME;                    ///< name of the port
    std::string LOCATION;                ///< position on the array
    uint32_t HEALTHSTATUS = 0;           ///< the array's code
    uint32_t RUNNINGSTATUS = 0;          ///< the array's code
    uint32_t LOGICTYPE = 100;            ///< the array's code of the port's use; 100: unset
    int64_t RUNSPEED = 0;                ///< speed in force, in the array's unit; 0 when it is not a number
    uint64_t CONFSPEED = UINT64_MAX;     ///< configured speed; all ones: not read
    std::string WWN;                     ///< port WWN, 16 hexadecimal digits
    uint32_t INIORTGT = 0;               ///< works as initiator or target, the array's code
    uint32_t FCRUNMODE = 100;            ///< the array's code of the topology; 100: unset
    uint64_t LOSTSIGNALS = UINT64_MAX;   ///< losses of signal; all ones: not read
    uint64_t BADCHARNUMBER = UINT64_MAX; ///< invalid characters; all ones: not read
    uint64_t LOSTSYNC = UINT64_MAX;      ///< losses of synchronisation; all ones: not read
    uint64_t LINKFAIL = UINT64_MAX;      ///< link failures; all ones: not read
    uint64_t STARTTIME = UINT64_MAX;     ///< start of the counters, epoch seconds; all ones: not read
    uint64_t FLOGINDELAYTIMES = UINT64_MAX; ///< delayed fabric logins; all ones: not read
    uint64_t MAXSUPPORTSPEED = UINT64_MAX;  ///< highest speed supported; all ones: not read
};

/** Which ports to list: the set fields of filter, and a page. */
class TESSEL_API FCPortQuery
{
public:
    /** Asks for everything. */
    FCPortQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param port copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    FCPortQuery(FCPortMO& port, unsigned long startIndex, unsigned long pageSize)
        : filter(port), start(startIndex), count(pageSize)
    {
    }

    FCPortMO filter;         ///< ID, NAME, LOGICTYPE count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Reads Fibre Channel ports; CDeviceManager::getHandler(FCPORT_HANDLER). */
class TESSEL_API CFCPortHandler : public CHandler
{
public:
    /**
     * Reads one port.
     * @param fcPortID ID of the port; not empty.
     * @return the port; with an empty ID when the array answers without one.
     */
    virtual FCPortMO getFCPort(const std::string& fcPortID) = 0;

    /**
     * Lists the ports; one request, and one more for each port.
     * @param query filter and page; not changed.
     * @return the ports in the array's order.
     */
    virtual std::vector<FCPortMO> getFCPortBatch(FCPortQuery& query) = 0;
};

#endif

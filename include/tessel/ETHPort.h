#ifndef TESSEL_ETHPORT_H
#define TESSEL_ETHPORT_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** An Ethernet port of the array. Read only. */
class TESSEL_API ETHPortMO
{
public:
    std::string ID;                          ///< the array's ID of the port
    std::string NAME;                        ///< name of the port
    std::string LOCATION;                    ///< position on the array
    uint32_t HEALTHSTATUS = 0;               ///< the array's code
    uint32_t RUNNINGSTATUS = 0;              ///< the array's code
    uint32_t LOGICTYPE = 100;                ///< the array's code of the port's use; 100: unset
    std::string MACADDRESS;                  ///< as the array writes it
    uint32_t INIORTGT = 0;                   ///< works as initiator or target, the array's code
    uint64_t MTU = UINT64_MAX;               ///< bytes; all ones: not read
    std::string ISCSITCPPORT;                ///< TCP port of the iSCSI target, as text
    std::string ISCSINAME;                   ///< iSCSI name of the target
    uint64_t ERRORPACKETS = UINT64_MAX;      ///< packets with errors; all ones: not read
    uint64_t LOSTPACKETS = UINT64_MAX;       ///< packets lost; all ones: not read
    uint64_t OVERFLOWEDPACKETS = UINT64_MAX; ///< packets for which there was no room; all ones: not read
    uint64_t STARTTIME = UINT64_MAX;         ///< start of the counters, epoch seconds; all ones: not read
    uint64_t SPEED = UINT64_MAX;             ///< speed in force, in the array's unit; all ones: not read
    std::string IPV4MASK;                    ///< network mask; empty without an IPv4 address
    std::string IPV4ADDRESS;                 ///< IPv4 address; empty when there is none
    std::string IPV6MASK;                    ///< prefix length; empty without an IPv6 address
    std::string IPV6ADDRESS;                 ///< IPv6 address; empty when there is none
};

/** Which ports to list: the set fields of filter, and a page. */
class TESSEL_API ETHPortQuery
{
public:
    /** Asks for everything. */
    ETHPortQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param port copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    ETHPortQuery(ETHPortMO& port, unsigned long startIndex, unsigned long pageSize)
        : filter(port), start(startIndex), count(pageSize)
    {
    }

    ETHPortMO filter;        ///< ID, NAME, LOGICTYPE count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Reads Ethernet ports; CDeviceManager::getHandler(ETHPORT_HANDLER). */
class TESSEL_API CETHPortHandler : public CHandler
{
public:
    /**
     * Reads one port.
     * @param ethPortID ID of the port; not empty.
     * @return the port; with an empty ID when the array answers without one.
     */
    virtual ETHPortMO getETHPort(const std::string& ethPortID) = 0;

    /**
     * Lists the ports; one request, and one more for each port.
     * @param query filter and page; not changed.
     * @return the ports in the array's order.
     */
    virtual std::vector<ETHPortMO> getETHPortBatch(ETHPortQuery& query) = 0;
};

#endif

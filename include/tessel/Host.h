#ifndef TESSEL_HOST_H
#define TESSEL_HOST_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>

/** The array's record of one server. */
class TESSEL_API HostMO
{
public:
    std::string ID;                 ///< the array's ID of the host
    std::string NAME;               ///< unique among the array's hosts
    uint32_t PARENTTYPE = 0;        ///< object type of the parent (host group); 0: none
    std::string PARENTID;           ///< ID of the parent
    std::string LOCATION;           ///< free text
    uint32_t HEALTHSTATUS = 0;      ///< the array's code; read only
    uint32_t RUNNINGSTATUS = 0;     ///< the array's code; read only
    std::string DESCRIPTION;        ///< free text
    uint32_t OPERATIONSYSTEM = 100; ///< the array's code of the operating system; 100: unset
    std::string IP;                 ///< address of the host, for the administrator's information
    int32_t ISADD2HOSTGROUP = -1;   ///< 1 in a host group, 0 not; -1: not read
};

/** Creates and reads hosts; CDeviceManager::getHandler(HOST_HANDLER). */
class TESSEL_API CHostHandler : public CHandler
{
public:
    /**
     * Creates a host and reads it back.
     * @param host NAME is required; an unset OPERATIONSYSTEM is logged as an error and sent all the same. ID,
     *        PARENTTYPE, PARENTID, LOCATION, DESCRIPTION and IP are sent when set.
     * @return the host as the array holds it; with an empty ID when it was created but could not be read yet.
     */
    virtual HostMO createHost(HostMO& host) = 0;

    /**
     * Reads one host.
     * @param hostID ID of the host; not empty.
     * @return the host; with an empty ID when the array answers without one.
     */
    virtual HostMO getHost(const std::string& hostID) = 0;
};

#endif

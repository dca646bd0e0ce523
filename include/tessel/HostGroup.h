#ifndef TESSEL_HOSTGROUP_H
#define TESSEL_HOSTGROUP_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A host group: the hosts that a mapping view binds to a LUN group. */
class TESSEL_API HostGroupMO
{
public:
    std::string ID;
    std::string NAME;
    std::string DESCRIPTION;
    int32_t ISADD2MAPPINGVIEW = -1; ///< 1 in a mapping view, 0 not; -1: unset
};

/** Which host groups to list: the set fields of filter, and a page. */
class TESSEL_API HostGroupQuery
{
public:
    HostGroupQuery() = default;
    HostGroupQuery(HostGroupMO& hostGroup, unsigned long startIndex, unsigned long pageSize)
        : filter(hostGroup), start(startIndex), count(pageSize)
    {
    }

    HostGroupMO filter;      ///< ID and NAME count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Manages host groups and their members; CDeviceManager::getHandler(HOSTGROUP_HANDLER). */
class TESSEL_API CHostGroupHandler : public CHandler
{
public:
    /**
     * Creates a host group and reads it back.
     * @param hostGroup NAME is required; DESCRIPTION and ID are sent when set.
     * @return the host group as the array holds it; with an empty ID when it was created but could not be
     * read yet.
     */
    virtual HostGroupMO createHostGroup(HostGroupMO& hostGroup) = 0;

    /** Deletes a host group. */
    virtual void deleteHostGroup(const std::string& hostGroupID) = 0;

    /** Reads one host group; a record with an empty ID when the array answers without one. */
    virtual HostGroupMO getHostGroup(const std::string& hostGroupID) = 0;

    /** Adds a host; failures of the request are logged as warnings and not thrown. */
    virtual void addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;

    /** Lists the host groups that hold a host. */
    virtual std::vector<HostGroupMO> getHostGroupByHost(const std::string& hostID, HostGroupQuery& query) = 0;

    /** The host group of a mapping view; a record with an empty ID when it has none. */
    virtual HostGroupMO getHostGroupByMappingView(const std::string& mappingViewID) = 0;

    /** Removes a host; failures of the request are logged as warnings and not thrown. */
    virtual void removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;
};

#endif

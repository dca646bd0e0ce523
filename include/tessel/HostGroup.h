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
    std::string ID;                 ///< the array's ID of the host group
    std::string NAME;               ///< unique among the array's host groups
    std::string DESCRIPTION;        ///< free text
    int32_t ISADD2MAPPINGVIEW = -1; ///< 1 in a mapping view, 0 not; -1: unset
};

/** Which host groups to list: the set fields of filter, and a page. */
class TESSEL_API HostGroupQuery
{
public:
    /** Asks for everything. */
    HostGroupQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param hostGroup copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
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
     *         read yet.
     */
    virtual HostGroupMO createHostGroup(HostGroupMO& hostGroup) = 0;

    /**
     * Deletes a host group.
     * @param hostGroupID ID of the host group; not empty.
     */
    virtual void deleteHostGroup(const std::string& hostGroupID) = 0;

    /**
     * Reads one host group.
     * @param hostGroupID ID of the host group; not empty.
     * @return the host group; with an empty ID when the array answers without one.
     */
    virtual HostGroupMO getHostGroup(const std::string& hostGroupID) = 0;

    /**
     * Adds a host; failures of the request are logged as warnings and not thrown.
     * @param hostID ID of the host; not empty.
     * @param hostGroupID ID of the host group; not empty.
     */
    virtual void addHostToHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;

    /**
     * Lists the host groups that hold a host; one request, and one more for each host group.
     * @param hostID ID of the host; not empty.
     * @param query filter and page; not changed.
     * @return the host groups in the array's order.
     */
    virtual std::vector<HostGroupMO> getHostGroupByHost(const std::string& hostID, HostGroupQuery& query) = 0;

    /**
     * Reads the host group of a mapping view.
     * @param mappingViewID ID of the mapping view; not empty.
     * @return the host group; with an empty ID when the mapping view has none.
     */
    virtual HostGroupMO getHostGroupByMappingView(const std::string& mappingViewID) = 0;

    /**
     * Removes a host; failures of the request are logged as warnings and not thrown.
     * @param hostID ID of the host; not empty.
     * @param hostGroupID ID of the host group; not empty.
     */
    virtual void removeHostFromHostGroup(const std::string& hostID, const std::string& hostGroupID) = 0;
};

#endif

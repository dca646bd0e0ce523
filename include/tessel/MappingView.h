#ifndef TESSEL_MAPPINGVIEW_H
#define TESSEL_MAPPINGVIEW_H

#include <tessel/Handler.h>

#include <cstdint>
#include <string>
#include <vector>

/** A mapping view: binds one LUN group to one host group, so that the hosts see the LUNs. */
class TESSEL_API MappingViewMO
{
public:
    MappingViewMO() = default;
    MappingViewMO(const MappingViewMO&) = default;
    MappingViewMO& operator=(const MappingViewMO&) = default;
    virtual ~MappingViewMO() = default;

    std::string ID;
    std::string NAME;
    std::string DESCRIPTION;
    int32_t ENABLEINBANDCOMMAND = 0; ///< non-zero: in-band commands are allowed
};

/** Which mapping views to list: the set fields of filter, and a page. */
class TESSEL_API MappingViewQuery
{
public:
    MappingViewQuery() = default;
    MappingViewQuery(MappingViewMO& mappingView, unsigned long startIndex, unsigned long pageSize)
        : filter(mappingView), start(startIndex), count(pageSize)
    {
    }
    virtual ~MappingViewQuery() = default;

    MappingViewMO filter;    ///< ID and NAME count
    unsigned long start = 0; ///< index of the first record
    unsigned long count = 0; ///< number of records; 0: no range is asked for
};

/** Manages mapping views; CDeviceManager::getHandler(MAPPINGVIEW_HANDLER). */
class TESSEL_API CMappingViewHandler : public CHandler
{
public:
    /**
     * Creates a mapping view and reads it back.
     * @param mappingView NAME is required; ID and DESCRIPTION are sent when set.
     * @return the view as the array holds it; with an empty ID when it was created but could not be read yet.
     */
    virtual MappingViewMO createMappingView(MappingViewMO& mappingView) = 0;

    /** Deletes a mapping view. */
    virtual void deleteMappingView(const std::string& mappingViewID) = 0;

    /** Reads one mapping view; a record with an empty ID when the array answers without one. */
    virtual MappingViewMO getMappingView(const std::string& mappingViewID) = 0;

    /** Puts a LUN group into a mapping view. */
    virtual void addLunGroupToMappingView(const std::string& lunGroupID,
                                          const std::string& mappingViewID) = 0;

    /** Takes a LUN group out of a mapping view. */
    virtual void removeLunGroupFromMappingView(const std::string& lunGroupID,
                                               const std::string& mappingViewID) = 0;

    /** Puts a host group into a mapping view. */
    virtual void addHostGroupToMappingView(const std::string& hostGroupID,
                                           const std::string& mappingViewID) = 0;

    /** Takes a host group out of a mapping view. */
    virtual void removeHostGroupFromMappingView(const std::string& hostGroupID,
                                                const std::string& mappingViewID) = 0;

    /** Lists the mapping views of a LUN group. */
    virtual std::vector<MappingViewMO> getMappingViewByLunGroup(const std::string& lunGroupID,
                                                                MappingViewQuery& query) = 0;

    /** Lists the mapping views of a host group. */
    virtual std::vector<MappingViewMO> getMappingViewByHostGroup(const std::string& hostGroupID,
                                                                 MappingViewQuery& query) = 0;
};

#endif

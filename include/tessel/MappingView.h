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
    /** A record in which nothing is set. */
    MappingViewMO() = default;
    /** A copy of another record. */
    MappingViewMO(const MappingViewMO&) = default;
    /** @return this record, now a copy of another one. */
    MappingViewMO& operator=(const MappingViewMO&) = default;
    /** Takes what another record holds, which is then to be set anew. */
    MappingViewMO(MappingViewMO&&) = default;
    /** @return this record, now with what another one held. */
    MappingViewMO& operator=(MappingViewMO&&) = default;
    /** Virtual, so that it may be derived from. */
    virtual ~MappingViewMO() = default;

    std::string ID;                  ///< the array's ID of the mapping view
    std::string NAME;                ///< unique among the array's mapping views
    std::string DESCRIPTION;         ///< free text
    int32_t ENABLEINBANDCOMMAND = 0; ///< non-zero: in-band commands are allowed
};

/** Which mapping views to list: the set fields of filter, and a page. */
class TESSEL_API MappingViewQuery
{
public:
    /** Asks for everything. */
    MappingViewQuery() = default;
    /**
     * Asks for a page of what the filter selects.
     * @param mappingView copied into filter.
     * @param startIndex copied into start.
     * @param pageSize copied into count.
     */
    MappingViewQuery(MappingViewMO& mappingView, unsigned long startIndex, unsigned long pageSize)
        : filter(mappingView), start(startIndex), count(pageSize)
    {
    }
    /** A copy of another query. */
    MappingViewQuery(const MappingViewQuery&) = default;
    /** @return this query, now a copy of another one. */
    MappingViewQuery& operator=(const MappingViewQuery&) = default;
    /** Takes what another query holds, which is then to be set anew. */
    MappingViewQuery(MappingViewQuery&&) = default;
    /** @return this query, now with what another one held. */
    MappingViewQuery& operator=(MappingViewQuery&&) = default;
    /** Virtual, so that it may be derived from. */
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
     * @param mappingView NAME is required; ID and DESCRIPTION are sent when set, ENABLEINBANDCOMMAND always.
     * @return the view as the array holds it; with an empty ID when it was created but could not be read yet.
     */
    virtual MappingViewMO createMappingView(MappingViewMO& mappingView) = 0;

    /**
     * Deletes a mapping view.
     * @param mappingViewID ID of the mapping view; not empty.
     */
    virtual void deleteMappingView(const std::string& mappingViewID) = 0;

    /**
     * Reads one mapping view.
     * @param mappingViewID ID of the mapping view; not empty.
     * @return the mapping view; with an empty ID when the array answers without one.
     */
    virtual MappingViewMO getMappingView(const std::string& mappingViewID) = 0;

    /**
     * Puts a LUN group into a mapping view.
     * @param lunGroupID ID of the LUN group; not empty.
     * @param mappingViewID ID of the mapping view; not empty.
     */
    virtual void addLunGroupToMappingView(const std::string& lunGroupID,
                                          const std::string& mappingViewID) = 0;

    /**
     * Takes a LUN group out of a mapping view.
     * @param lunGroupID ID of the LUN group; not empty.
     * @param mappingViewID ID of the mapping view; not empty.
     */
    virtual void removeLunGroupFromMappingView(const std::string& lunGroupID,
                                               const std::string& mappingViewID) = 0;

    /**
     * Puts a host group into a mapping view.
     * @param hostGroupID ID of the host group; not empty.
     * @param mappingViewID ID of the mapping view; not empty.
     */
    virtual void addHostGroupToMappingView(const std::string& hostGroupID,
                                           const std::string& mappingViewID) = 0;

    /**
     * Takes a host group out of a mapping view.
     * @param hostGroupID ID of the host group; not empty.
     * @param mappingViewID ID of the mapping view; not empty.
     */
    virtual void removeHostGroupFromMappingView(const std::string& hostGroupID,
                                                const std::string& mappingViewID) = 0;

    /**
     * Lists the mapping views of a LUN group; one request, and one more for each mapping view.
     * @param lunGroupID ID of the LUN group; not empty.
     * @param query filter and page; not changed.
     * @return the mapping views in the array's order.
     */
    virtual std::vector<MappingViewMO> getMappingViewByLunGroup(const std::string& lunGroupID,
                                                                MappingViewQuery& query) = 0;

    /**
     * Lists the mapping views of a host group; one request, and one more for each mapping view.
     * @param hostGroupID ID of the host group; not empty.
     * @param query filter and page; not changed.
     * @return the mapping views in the array's order.
     */
    virtual std::vector<MappingViewMO> getMappingViewByHostGroup(const std::string& hostGroupID,
                                                                 MappingViewQuery& query) = 0;
};

#endif

#ifndef JOB_ACCESSMAP_H
#define JOB_ACCESSMAP_H

#include "job/AccessNames.h"

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ovra::tessel {

template <class Record>
NamedObject named(MOType type, const Record& record)
{
    return {type, record.ID, record.NAME};
}

template <class Record>
bool hasId(const std::vector<Record>& records, const std::string& id)
{
    return std::any_of(records.begin(), records.end(), [&](const Record& record) { return record.ID == id; });
}

/** What the array tells about one object, one host, and what may stand between them, asked patiently. */
class AccessMap
{
public:
    AccessMap(CDeviceManager& manager, const StorageObject& object, const HostInitiator& initiator,
              const AccessOptions& options)
        : m_array(manager), m_object(object), m_initiator(initiator), m_options(options)
    {
    }

    /** ID of the initiator's host; empty when it belongs to none. Throws when the array does not know it. */
    std::string hostID() const;
    bool exists() const; ///< the object
    bool isVisible(const std::string& hostID) const;

    /** Whether the host is in any host group; false where the array does not say. */
    bool isInHostGroup(const std::string& hostID) const;
    /** The host's host group of the first of the names from one index to another; an empty ID: none. */
    HostGroupMO hostGroup(const std::string& hostID, const AccessNames& names, unsigned from,
                          unsigned to) const;
    /** The mapping view of one of the names that binds no LUN group, or one of the names. */
    MappingViewMO view(const std::string& hostGroupID, const AccessNames& names) const;
    LunGroupMO lunGroup(const std::string& viewID) const;

    /** The LUN groups that hold the object: of one name, or all. */
    std::vector<LunGroupMO> lunGroupsNamed(const std::string& name) const;
    std::vector<LunGroupMO> lunGroups() const;
    /** The ways from a LUN group to a host. */
    std::vector<AccessPath> paths(const LunGroupMO& lunGroup, const std::string& hostID) const;
    /** The ways from a host's own LUN group that an administrator made to host groups which are not its own.
     */
    std::vector<AccessPath> pathsToOthers(const LunGroupMO& lunGroup, const AccessNames& names) const;
    /** What shows the object to the result's host: its own LUN group, or others. */
    void tellWhatShows(AccessResult& result) const;

    void bindInitiator(const std::string& hostID) const;

    const Array& array() const { return m_array; }

private:
    template <class Read>
    auto read(const Read& call) const -> decltype(call());

    Array m_array;
    const StorageObject& m_object;
    const HostInitiator& m_initiator;
    const AccessOptions& m_options;
};

} // namespace ovra::tessel

#endif

#ifndef JOB_SHOWING_H
#define JOB_SHOWING_H

#include "job/AccessMap.h"
#include "job/FindOrMake.h"

namespace ovra::tessel {

/** Makes what is missing between one object and one host. One use. */
class Showing
{
public:
    Showing(const AccessMap& map, const StorageObject& object, const HostInitiator& initiator,
            const AccessOptions& options)
        : m_map(map), m_object(object), m_initiator(initiator), m_options(options)
    {
    }

    AccessResult run();

private:
    void makeHost();
    void show();
    void add(const LunGroupMO& group) const;
    HostGroupMO hostGroup(const AccessNames& names);
    MappingViewMO view(const HostGroupMO& group, const AccessNames& names);
    LunGroupMO lunGroup(const MappingViewMO& view, const AccessNames& names);
    template <class Record>
    Record made(const Making<Record>& making);

    const AccessMap& m_map;
    const StorageObject& m_object;
    const HostInitiator& m_initiator;
    const AccessOptions& m_options;
    AccessResult m_result;
};

} // namespace ovra::tessel

#endif

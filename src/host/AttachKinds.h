#ifndef HOST_ATTACHKINDS_H
#define HOST_ATTACHKINDS_H

#include "host/AttachHandlers.h"
#include "session/Texts.h"

#include <string>

namespace ovra::tessel {

/** Asks for one object among those of a host or LUN group: a page that no group outgrows. */
const unsigned long WHOLE_RANGE = 65535;

/** What attaching and detaching differ in between LUNs and snapshots. */
struct LunKind
{
    static constexpr const char* ATTACH = "attachLunToHost";
    static constexpr const char* DETACH = "detachLunFromHost";
    static constexpr const char* ID_EMPTY = texts::LUN_ID_EMPTY;
    static constexpr const char* NOT_VALID = "The lunID is not valid! ";

    // The orders are the callers' to rely on: the first handler that is missing is the one named.
    static constexpr HANDLERTYPE ATTACH_ORDER[] = {LUN_HANDLER,  LUNGROUP_HANDLER,  ISCSIINITIATOR_HANDLER,
                                                   HOST_HANDLER, HOSTGROUP_HANDLER, MAPPINGVIEW_HANDLER};
    static constexpr HANDLERTYPE DETACH_ORDER[] = {LUN_HANDLER,  HOSTGROUP_HANDLER,   LUNGROUP_HANDLER,
                                                   HOST_HANDLER, MAPPINGVIEW_HANDLER, ISCSIINITIATOR_HANDLER};

    static LunMO read(const AttachHandlers& handlers, const std::string& id)
    {
        return handlers.lun().getLun(id);
    }

    static LunQuery only(const std::string& id)
    {
        LunMO filter;
        filter.ID = id;
        return LunQuery(filter, 0, WHOLE_RANGE);
    }

    static auto ofHost(const AttachHandlers& handlers, const std::string& hostId, LunQuery query)
    {
        return handlers.lun().getLunByHost(hostId, query);
    }

    static auto ofLunGroup(const AttachHandlers& handlers, const std::string& lunGroupId, LunQuery query)
    {
        return handlers.lun().getLunByLunGroup(lunGroupId, query);
    }

    static auto lunGroupsOf(const AttachHandlers& handlers, const std::string& id)
    {
        LunGroupQuery all;
        return handlers.lunGroup().getLunGroupByLun(id, all);
    }

    static void add(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
    {
        handlers.lunGroup().addLunToLunGroup(id, lunGroupId);
    }

    static void remove(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
    {
        handlers.lunGroup().removeLunFromLunGroup(id, lunGroupId);
    }
};

struct SnapshotKind
{
    static constexpr const char* ATTACH = "attachSnapshotToHost";
    static constexpr const char* DETACH = "detachSnapshotFromHost";
    static constexpr const char* ID_EMPTY = texts::SNAPSHOT_ID_EMPTY;
    static constexpr const char* NOT_VALID = "The snapshotID is not valid! ";

    static constexpr HANDLERTYPE ATTACH_ORDER[] = {SNAPSHOT_HANDLER,       LUNGROUP_HANDLER,
                                                   ISCSIINITIATOR_HANDLER, HOST_HANDLER,
                                                   MAPPINGVIEW_HANDLER,    HOSTGROUP_HANDLER};
    static constexpr HANDLERTYPE DETACH_ORDER[] = {MAPPINGVIEW_HANDLER,    SNAPSHOT_HANDLER,
                                                   HOSTGROUP_HANDLER,      HOST_HANDLER,
                                                   ISCSIINITIATOR_HANDLER, LUNGROUP_HANDLER};

    static SnapshotMO read(const AttachHandlers& handlers, const std::string& id)
    {
        return handlers.snapshot().getSnapshot(id);
    }

    static SnapshotQuery only(const std::string& id)
    {
        SnapshotMO filter;
        filter.ID = id;
        return SnapshotQuery(filter, 0, WHOLE_RANGE);
    }

    static auto ofHost(const AttachHandlers& handlers, const std::string& hostId, SnapshotQuery query)
    {
        return handlers.snapshot().getSnapshotByHost(hostId, query);
    }

    static auto ofLunGroup(const AttachHandlers& handlers, const std::string& lunGroupId, SnapshotQuery query)
    {
        return handlers.snapshot().getSnapshotByLunGroup(lunGroupId, query);
    }

    static auto lunGroupsOf(const AttachHandlers& handlers, const std::string& id)
    {
        LunGroupQuery all;
        return handlers.lunGroup().getLunGroupBySnapshot(id, all);
    }

    static void add(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
    {
        handlers.lunGroup().addSnapshotToLunGroup(id, lunGroupId);
    }

    static void remove(const AttachHandlers& handlers, const std::string& id, const std::string& lunGroupId)
    {
        handlers.lunGroup().removeSnapshotFromLunGroup(id, lunGroupId);
    }
};

} // namespace ovra::tessel

#endif

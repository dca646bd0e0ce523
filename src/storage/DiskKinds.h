#ifndef STORAGE_DISKKINDS_H
#define STORAGE_DISKKINDS_H

#include "session/Absorb.h"
#include "session/Texts.h"

#include <tessel/Lun.h>
#include <tessel/LunGroup.h>
#include <tessel/Snapshot.h>

namespace ovra::tessel {

// What LUNs and snapshots differ in. LUN groups hold both, and a host sees both as disks.

struct LunKind
{
    static constexpr MOType TYPE = MO_LUN;
    static constexpr HANDLERTYPE HANDLER = LUN_HANDLER;
    static constexpr IdArgument ID = texts::LUN_ID;

    static constexpr auto GET = &CLunHandler::getLun;
    static constexpr auto OF_HOST = &CLunHandler::getLunByHost;
    static constexpr auto OF_LUNGROUP = &CLunHandler::getLunByLunGroup;
    static constexpr auto ADD = &CLunGroupHandler::addLunToLunGroup;
    static constexpr auto REMOVE = &CLunGroupHandler::removeLunFromLunGroup;
    static constexpr auto LUNGROUPS = &CLunGroupHandler::getLunGroupByLun;
    using Object = LunMO;
    using Query = LunQuery;
    using Handler = CLunHandler;

    // The workers of LUN groups.
    static constexpr Absorbed ADDING = {{ARRAY_ALREADY_IN_LUN_GROUP, ARRAY_ALREADY_MEMBER_OF_LUN_GROUP},
                                        "the lun was already in the lun group, ignore it. ",
                                        "addObjToLunGroup exception. ",
                                        "add lun to lun group failed. "};
    static constexpr Absorbed REMOVING = {{ARRAY_NOT_IN_LUN_GROUP},
                                          "the lun was not in the lun group, ignore it. ",
                                          "remove object from lunGroup exception. ",
                                          "remove lun from lun group failed. "};

    static constexpr const char* ATTACH_NAME = "attachLunToHost";
    static constexpr const char* DETACH_NAME = "detachLunFromHost";
    static constexpr const char* NOT_VALID = "The lunID is not valid! ";

    static constexpr const char* LABEL = "Lun";
    static constexpr const char* NOUN = "LUN";
    static constexpr const char* NO_HANDLER = "get lunHandler fail! ";
    static constexpr const char* NOT_FOUND = "lun path is NULL.";
};

struct SnapshotKind
{
    static constexpr MOType TYPE = MO_SNAPSHOT;
    static constexpr HANDLERTYPE HANDLER = SNAPSHOT_HANDLER;
    static constexpr IdArgument ID = texts::SNAPSHOT_ID;

    static constexpr auto GET = &CSnapshotHandler::getSnapshot;
    static constexpr auto OF_HOST = &CSnapshotHandler::getSnapshotByHost;
    static constexpr auto OF_LUNGROUP = &CSnapshotHandler::getSnapshotByLunGroup;
    static constexpr auto ADD = &CLunGroupHandler::addSnapshotToLunGroup;
    static constexpr auto REMOVE = &CLunGroupHandler::removeSnapshotFromLunGroup;
    static constexpr auto LUNGROUPS = &CLunGroupHandler::getLunGroupBySnapshot;
    using Object = SnapshotMO;
    using Query = SnapshotQuery;
    using Handler = CSnapshotHandler;

    static constexpr Absorbed ADDING = {{ARRAY_ALREADY_IN_LUN_GROUP, ARRAY_ALREADY_MEMBER_OF_LUN_GROUP},
                                        "the snapshot was already in the lun group, ignore it. ",
                                        "addObjToLunGroup exception. ",
                                        "add snapshot to lun group failed. "};
    static constexpr Absorbed REMOVING = {
        {ARRAY_NOT_IN_LUN_GROUP},
        "the snapshot was not in the lun group, ignore it. , ignore it. ", // docs/oddities.md#ignore-it
        "remove object from lunGroup exception. ",
        "remove snapshot from lun group failed. "};

    static constexpr const char* ATTACH_NAME = "attachSnapshotToHost";
    static constexpr const char* DETACH_NAME = "detachSnapshotFromHost";
    static constexpr const char* NOT_VALID = "The snapshotID is not valid! ";

    static constexpr const char* LABEL = "Snapshot";
    static constexpr const char* NOUN = "snapshot";
    static constexpr const char* NO_HANDLER = "get snapshotHandler fail! ";
    static constexpr const char* NOT_FOUND = "snapshot path is NULL.";
};

/** Calls with the kind that a type names; every type but LUN counts as snapshot. */
template <class Call>
auto withKind(MOType type, Call call)
{
    return type == MO_LUN ? call(LunKind()) : call(SnapshotKind());
}

/** What log lines call an object; null for a type that has no disk. */
inline const char* diskLabel(MOType type)
{
    const bool isDisk = type == LunKind::TYPE || type == SnapshotKind::TYPE;
    return isDisk ? withKind(type, [](auto kind) { return kind.LABEL; }) : nullptr;
}

} // namespace ovra::tessel

#endif

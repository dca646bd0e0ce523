#ifndef SESSION_TEXTS_H
#define SESSION_TEXTS_H

#include "observer/Kinds.h"

/** What several operations share: their IDs with the messages about them, the operation's name follows the
 * closing blank. */
namespace ovra::tessel::texts {

constexpr IdArgument LUN_ID = {kinds::LUN, "lunID is empty! "};
constexpr IdArgument SNAPSHOT_ID = {kinds::SNAPSHOT, "snapshotID is empty! "};
constexpr IdArgument LUNGROUP_ID = {kinds::LUNGROUP, "LunGroup id is empty! "};
constexpr IdArgument HOST_ID = {kinds::HOST, "hostID is empty! "};
constexpr IdArgument HOSTGROUP_ID = {kinds::HOSTGROUP,
                                     "HostGroupID is empty "}; // docs/oddities.md#no-exclamation-mark
constexpr IdArgument MAPPINGVIEW_ID = {kinds::MAPPINGVIEW, "mappingViewID is empty! "};
constexpr IdArgument ISCSI_INITIATOR_ID = {kinds::INITIATOR, "iscsiInitiatorID is empty! "};
constexpr IdArgument FC_INITIATOR_ID = {kinds::INITIATOR, "fcInitiatorID is empty! "};
constexpr const char* NO_DEVICE_MANAGER = "deviceManage is NULL! ";

} // namespace ovra::tessel::texts

#endif

#ifndef SESSION_TEXTS_H
#define SESSION_TEXTS_H

/** Messages that several operations share; the operation's name follows the closing blank. */
namespace ovra::tessel::texts {

constexpr const char* LUN_ID_EMPTY = "lunID is empty! ";
constexpr const char* SNAPSHOT_ID_EMPTY = "snapshotID is empty! ";
constexpr const char* LUNGROUP_ID_EMPTY = "LunGroup id is empty! ";
constexpr const char* HOST_ID_EMPTY = "hostID is empty! ";
constexpr const char* HOSTGROUP_ID_EMPTY = "HostGroupID is empty "; // docs/oddities.md#no-exclamation-mark
constexpr const char* MAPPINGVIEW_ID_EMPTY = "mappingViewID is empty! ";
constexpr const char* ISCSI_INITIATOR_ID_EMPTY = "iscsiInitiatorID is empty! ";
constexpr const char* FC_INITIATOR_ID_EMPTY = "fcInitiatorID is empty! ";
constexpr const char* NO_DEVICE_MANAGER = "deviceManage is NULL! ";

} // namespace ovra::tessel::texts

#endif

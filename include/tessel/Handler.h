#ifndef TESSEL_HANDLER_H
#define TESSEL_HANDLER_H

/** @file
 * What all handlers share, and which there are. */

#include <tessel/Export.h>

/** Selects a handler in CDeviceManager::getHandler. */
enum HANDLERTYPE : int
{
    LUN_HANDLER = 2,            ///< CLunHandler
    LUNGROUP_HANDLER = 3,       ///< CLunGroupHandler
    HOST_HANDLER = 4,           ///< CHostHandler
    HOSTGROUP_HANDLER = 5,      ///< CHostGroupHandler
    MAPPINGVIEW_HANDLER = 6,    ///< CMappingViewHandler
    ISCSIINITIATOR_HANDLER = 7, ///< CIscsiInitiatorHandler
    SNAPSHOT_HANDLER = 8,       ///< CSnapshotHandler
    DISKATTACH_HANDLER = 9,     ///< CDiskAttachHandler
    DISKSCANNER_HANDLER = 10,   ///< CDiskScannerHandler
    FCINITIATOR_HANDLER = 11,   ///< CFCInitiatorHandler
    ETHPORT_HANDLER = 12,       ///< CETHPortHandler
    FCPORT_HANDLER = 13,        ///< CFCPortHandler
    FCOEPORT_HANDLER = 14       ///< CFCoEPortHandler
};

/** The array's code of an object type. */
enum MOType : int
{
    MO_LUN = 11,          ///< LunMO
    MO_HOSTGROUP = 14,    ///< HostGroupMO
    MO_HOST = 21,         ///< HostMO
    MO_SNAPSHOT = 27,     ///< SnapshotMO
    MO_STORAGEPOOL = 216, ///< storage pool, the parent of a LUN; has no record here
    MO_MAPPINGVIEW = 245, ///< MappingViewMO
    MO_LUNGROUP = 256     ///< LunGroupMO
};

/**
 * Base of every handler.
 *
 * A handler belongs to the device manager that made it and is never deleted by the application. Its
 * operations are synchronous and report failure by OvraAPIException and OvraAPIExceptionWithErrCode alone,
 * unless they say otherwise. An ID that must not be empty is refused before anything is sent, and so are the
 * IDs "." and ".."; IDs are data, encoded once by the SDK. A text in a filter that holds " and " with a name
 * and a colon behind it would add a condition of its own, and is refused. A device manager and its handlers
 * are to be used by one thread at a time.
 */
class TESSEL_API CHandler
{
public:
    /** Called by the device manager alone. */
    virtual ~CHandler();
};

#endif

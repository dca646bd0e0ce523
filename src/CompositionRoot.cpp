// The one place that knows every handler: it makes them on request and ends them with their device manager.

#include "access/FCInitiatorHandlerImpl.h"
#include "access/HostGroupHandlerImpl.h"
#include "access/HostHandlerImpl.h"
#include "access/IscsiInitiatorHandlerImpl.h"
#include "access/MappingViewHandlerImpl.h"
#include "host/DiskAttachHandlerImpl.h"
#include "host/DiskScannerHandlerImpl.h"
#include "ports/EthPortHandlerImpl.h"
#include "ports/FCPortHandlerImpl.h"
#include "ports/FCoEPortHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "session/ManagerOptions.h"
#include "storage/LunGroupHandlerImpl.h"
#include "storage/LunHandlerImpl.h"
#include "storage/SnapshotHandlerImpl.h"

#include <ovra/threads/NoCancellation.h>

using namespace ovra::tessel;

namespace {

template <class Handler>
CHandler* madeOnce(Handler*& handler, CDeviceManagerImpl* deviceManager)
{
    if (handler == nullptr) {
        handler = new Handler(deviceManager);
    }
    return handler;
}

template <class... Handlers>
void deleteInOrder(Handlers*&... handlers)
{
    ((delete handlers, handlers = nullptr), ...);
}

} // namespace

CHandler* CDeviceManagerImpl::getHandler(HANDLERTYPE type)
{
    const ovra::NoCancellation whole; // a scanner runs a command when it is made
    Observation seen("getHandler", this);
    seen.names(kinds::HANDLER, std::to_string(type));
    CHandler* const handler = handlerOf(type);
    seen.ended(handler != nullptr ? RESULT_SUCCESS : RESULT_BAD_ARGUMENT);
    return handler;
}

CHandler* CDeviceManagerImpl::handlerOf(HANDLERTYPE type)
{
    switch (type) {
    case LUN_HANDLER:
        return madeOnce(m_pLunHandler, this);
    case LUNGROUP_HANDLER:
        return madeOnce(m_pLunGroupHandler, this);
    case HOST_HANDLER:
        return madeOnce(m_pHostHandler, this);
    case HOSTGROUP_HANDLER:
        return madeOnce(m_pHostGroupHandler, this);
    case MAPPINGVIEW_HANDLER:
        return madeOnce(m_pMappingViewHandler, this);
    case ISCSIINITIATOR_HANDLER:
        return madeOnce(m_pIscsiInitiatorHandler, this);
    case SNAPSHOT_HANDLER:
        return madeOnce(m_pSnapshotHandler, this);
    case DISKATTACH_HANDLER:
        return madeOnce(m_pDiskAttachHandler, this);
    case DISKSCANNER_HANDLER:
        return madeOnce(m_pDiskScannerHandler, this);
    case FCINITIATOR_HANDLER:
        return madeOnce(m_pFCInitiatorHandler, this);
    case ETHPORT_HANDLER:
        return madeOnce(m_pEthPortHandler, this);
    case FCPORT_HANDLER:
        return madeOnce(m_pFCPortHandler, this);
    case FCOEPORT_HANDLER:
        return madeOnce(m_pFCoEPortHandler, this);
    }
    return nullptr;
}

CDeviceManagerImpl::~CDeviceManagerImpl()
{
    forgetOptions(this);
    deleteInOrder(m_pLunHandler, m_pLunGroupHandler, m_pIscsiInitiatorHandler, m_pHostHandler,
                  m_pHostGroupHandler, m_pMappingViewHandler, m_pDiskAttachHandler, m_pSnapshotHandler,
                  m_pFCInitiatorHandler, m_pEthPortHandler, m_pFCPortHandler, m_pFCoEPortHandler,
                  m_pDiskScannerHandler);
}

#ifndef UNIT_HANDLERS_HANDLERTEST_H
#define UNIT_HANDLERS_HANDLERTEST_H

#include "access/FCInitiatorHandlerImpl.h"
#include "access/HostGroupHandlerImpl.h"
#include "access/HostHandlerImpl.h"
#include "access/IscsiInitiatorHandlerImpl.h"
#include "access/MappingViewHandlerImpl.h"
#include "host/DiskAttachHandlerImpl.h"
#include "ports/EthPortHandlerImpl.h"
#include "ports/FCPortHandlerImpl.h"
#include "ports/FCoEPortHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "session/Retry.h"
#include "storage/LunGroupHandlerImpl.h"
#include "storage/LunHandlerImpl.h"
#include "storage/SnapshotHandlerImpl.h"
#include "support/RecordingPlatform.h"
#include "unit/handlers/Journal.h"
#include "unit/handlers/Outcome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ovra::tessel;

/** A device manager over the recording platform; after each test every log call is checked for its form. */
class HandlerTest : public testing::Test
{
protected:
    HandlerTest()
    {
        platform.reset();
        gRetryTimes = 0;
        gRetrySleepTimeMicroSeconds = 500000;
    }

    void TearDown() override { expectWellFormedLogCalls(platform); }

    /** The lines that the operations themselves do not explain: requests, pauses, warnings and errors. */
    Lines deeds() const
    {
        Lines found;
        for (const std::string& line : platform.journal()) {
            if (line.compare(0, 6, "info: ") != 0 && line.compare(0, 6, "record") != 0) {
                found.push_back(line);
            }
        }
        return found;
    }

    RecordingPlatform& platform = RecordingPlatform::get();
    CDeviceManagerImpl manager;
};

/** The handlers of a device manager, as their implementations. */
namespace handlers {

template <class Impl>
Impl& as(CHandler* handler)
{
    return static_cast<Impl&>(*handler);
}

inline CLunHandlerImpl& lun(CDeviceManagerImpl& m)
{
    return as<CLunHandlerImpl>(m.getHandler(LUN_HANDLER));
}
inline CLunGroupHandlerImpl& lunGroup(CDeviceManagerImpl& m)
{
    return as<CLunGroupHandlerImpl>(m.getHandler(LUNGROUP_HANDLER));
}
inline CSnapshotHandlerImpl& snapshot(CDeviceManagerImpl& m)
{
    return as<CSnapshotHandlerImpl>(m.getHandler(SNAPSHOT_HANDLER));
}
inline CHostHandlerImpl& host(CDeviceManagerImpl& m)
{
    return as<CHostHandlerImpl>(m.getHandler(HOST_HANDLER));
}
inline CHostGroupHandlerImpl& hostGroup(CDeviceManagerImpl& m)
{
    return as<CHostGroupHandlerImpl>(m.getHandler(HOSTGROUP_HANDLER));
}
inline CIscsiInitiatorHandlerImpl& iscsi(CDeviceManagerImpl& m)
{
    return as<CIscsiInitiatorHandlerImpl>(m.getHandler(ISCSIINITIATOR_HANDLER));
}
inline CFCInitiatorHandlerImpl& fc(CDeviceManagerImpl& m)
{
    return as<CFCInitiatorHandlerImpl>(m.getHandler(FCINITIATOR_HANDLER));
}
inline CMappingViewHandlerImpl& mappingView(CDeviceManagerImpl& m)
{
    return as<CMappingViewHandlerImpl>(m.getHandler(MAPPINGVIEW_HANDLER));
}
inline CFCPortHandlerImpl& fcPort(CDeviceManagerImpl& m)
{
    return as<CFCPortHandlerImpl>(m.getHandler(FCPORT_HANDLER));
}
inline CFCoEPortHandlerImpl& fcoePort(CDeviceManagerImpl& m)
{
    return as<CFCoEPortHandlerImpl>(m.getHandler(FCOEPORT_HANDLER));
}
inline CEthPortHandlerImpl& ethPort(CDeviceManagerImpl& m)
{
    return as<CEthPortHandlerImpl>(m.getHandler(ETHPORT_HANDLER));
}
inline CDiskAttachHandlerImpl& attach(CDeviceManagerImpl& m)
{
    return as<CDiskAttachHandlerImpl>(m.getHandler(DISKATTACH_HANDLER));
}

} // namespace handlers

#endif

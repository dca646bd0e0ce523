// The inside of device managers, handlers and exceptions: members in their order, and who deletes whom.
// Built without access control.

#include "unit/session/Layout.h"

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
#include "storage/LunGroupHandlerImpl.h"
#include "storage/LunHandlerImpl.h"
#include "storage/SnapshotHandlerImpl.h"
#include "support/RecordingPlatform.h"

#include <tessel/Exception.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace ovra::tessel;

namespace {

using layout::members;
using layout::offsetOf;
using M = CDeviceManagerImpl;

TEST(Members, OfADeviceManager)
{
    const M manager;
    EXPECT_EQ(members(manager, &M::m_ip, &M::m_port, &M::m_token, &M::m_cookie, &M::m_deviceId,
                      &M::m_pLunHandler, &M::m_pLunGroupHandler, &M::m_pIscsiInitiatorHandler,
                      &M::m_pHostHandler, &M::m_pHostGroupHandler, &M::m_pMappingViewHandler,
                      &M::m_pDiskAttachHandler, &M::m_pSnapshotHandler, &M::m_pFCInitiatorHandler,
                      &M::m_pEthPortHandler, &M::m_pFCPortHandler, &M::m_pFCoEPortHandler,
                      &M::m_pDiskScannerHandler),
              "s u32=0 s s s p p p p p p p p p p p p p");
    EXPECT_EQ(offsetOf(&M::m_registration), offsetOf(&M::m_port) + sizeof(M::m_port)) << "not in the hole";
    static_assert(std::is_same_v<decltype(M::iniCnt), int>);
    static_assert(std::is_same_v<decltype(M::m_mutex), pthread_mutex_t>);
    EXPECT_EQ(M::iniCnt, 0);
}

TEST(Members, OfADeviceManagerHoldTheSessionInForce)
{
    RecordingPlatform::get().reset();
    M manager;
    EXPECT_TRUE(manager.useConnection("192.0.2.7", 8088, "2102", "T", "C"));
    EXPECT_EQ(members(manager, &M::m_ip, &M::m_port, &M::m_token, &M::m_cookie, &M::m_deviceId).substr(0, 36),
              "s=192.0.2.7 u32=8088 s=T s=C s=2102 ");
}

TEST(Members, CountTheLiveInstances)
{
    RecordingPlatform::get().reset();
    CDeviceManager* const first = CDeviceManager::getInstance(0, 0);
    CDeviceManager* const second = CDeviceManager::getInstance(0, 0);
    EXPECT_EQ(M::iniCnt, 2);
    CDeviceManager::releaseInstance(first);
    EXPECT_EQ(M::iniCnt, 1);
    CDeviceManager::releaseInstance(second);
    EXPECT_EQ(M::iniCnt, 0);
}

/** A handler implementation holds its device manager and nothing else. */
template <class Impl>
void expectRestHandler()
{
    M manager;
    EXPECT_EQ(offsetOf(&Impl::m_pDeviceManager), sizeof(void*));
    EXPECT_EQ(sizeof(Impl), 2 * sizeof(void*));
    EXPECT_EQ(Impl().m_pDeviceManager, nullptr);
    EXPECT_EQ(Impl(&manager).m_pDeviceManager, &manager);
    static_assert(!std::is_convertible_v<M*, Impl>);
}

TEST(Members, OfHandlersAreTheirDeviceManagerAlone)
{
    expectRestHandler<CLunHandlerImpl>();
    expectRestHandler<CLunGroupHandlerImpl>();
    expectRestHandler<CSnapshotHandlerImpl>();
    expectRestHandler<CHostHandlerImpl>();
    expectRestHandler<CHostGroupHandlerImpl>();
    expectRestHandler<CIscsiInitiatorHandlerImpl>();
    expectRestHandler<CFCInitiatorHandlerImpl>();
    expectRestHandler<CMappingViewHandlerImpl>();
    expectRestHandler<CFCPortHandlerImpl>();
    expectRestHandler<CFCoEPortHandlerImpl>();
    expectRestHandler<CEthPortHandlerImpl>();
    expectRestHandler<CDiskAttachHandlerImpl>();
}

TEST(Members, OfADiskScannerBeginWithItsDeviceManager)
{
    EXPECT_EQ(offsetOf(&CDiskScannerHandlerImpl::m_pDeviceManager), sizeof(void*));
    EXPECT_EQ(CDiskScannerHandlerImpl().m_pDeviceManager, nullptr);
}

TEST(Members, OfExceptionsAreTheTextAndThenTheCode)
{
    using E = OvraAPIExceptionWithErrCode;
    EXPECT_EQ(offsetOf(&OvraAPIException::m_message), sizeof(std::exception));
    EXPECT_EQ(sizeof(OvraAPIException), sizeof(std::exception) + sizeof(std::string));
    EXPECT_EQ(offsetOf(&E::m_code), sizeof(OvraAPIException));
    static_assert(std::is_same_v<decltype(E::m_code), int>);
}

/** Notes its end. */
template <class Impl>
class Ending : public Impl
{
public:
    explicit Ending(const char* name) : m_name(name) {}
    ~Ending() override { RecordingPlatform::get().note(m_name); }

private:
    const char* m_name;
};

TEST(Handlers, AreDeletedByTheirDeviceManagerInTheOrderOfItsMembers)
{
    RecordingPlatform::get().reset();
    {
        M manager;
        manager.m_pDiskScannerHandler = new Ending<CDiskScannerHandlerImpl>("scanner");
        manager.m_pFCoEPortHandler = new Ending<CFCoEPortHandlerImpl>("fcoe port");
        manager.m_pFCPortHandler = new Ending<CFCPortHandlerImpl>("fc port");
        manager.m_pEthPortHandler = new Ending<CEthPortHandlerImpl>("eth port");
        manager.m_pFCInitiatorHandler = new Ending<CFCInitiatorHandlerImpl>("fc initiator");
        manager.m_pSnapshotHandler = new Ending<CSnapshotHandlerImpl>("snapshot");
        manager.m_pDiskAttachHandler = new Ending<CDiskAttachHandlerImpl>("attach");
        manager.m_pMappingViewHandler = new Ending<CMappingViewHandlerImpl>("mapping view");
        manager.m_pHostGroupHandler = new Ending<CHostGroupHandlerImpl>("host group");
        manager.m_pHostHandler = new Ending<CHostHandlerImpl>("host");
        manager.m_pIscsiInitiatorHandler = new Ending<CIscsiInitiatorHandlerImpl>("iscsi initiator");
        manager.m_pLunGroupHandler = new Ending<CLunGroupHandlerImpl>("lun group");
        manager.m_pLunHandler = new Ending<CLunHandlerImpl>("lun");
    }
    EXPECT_THAT(RecordingPlatform::get().journal(),
                testing::ElementsAre("lun", "lun group", "iscsi initiator", "host", "host group",
                                     "mapping view", "attach", "snapshot", "fc initiator", "eth port",
                                     "fc port", "fcoe port", "scanner"));
}

TEST(Handlers, MadeOnRequestKnowTheDeviceManagerThatMadeThem)
{
    M manager;
    const auto* const handler = static_cast<CLunHandlerImpl*>(manager.getHandler(LUN_HANDLER));
    EXPECT_EQ(handler->m_pDeviceManager, &manager);
    EXPECT_EQ(manager.m_pLunHandler, handler);
    EXPECT_EQ(manager.m_pHostHandler, nullptr) << "made before it was asked for";
}

} // namespace

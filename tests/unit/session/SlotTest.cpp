// The order of virtual functions, which programs built against the headers rely on.

#include "unit/session/Layout.h"

#include "access/MappingViewHandlerImpl.h"
#include "host/DiskAttachHandlerImpl.h"
#include "session/DeviceManagerImpl.h"
#include "storage/LunGroupHandlerImpl.h"
#include "storage/LunHandlerImpl.h"

#include <ovra/rest/UserManager.h>
#include <tessel/Tessel.h>

#include <gtest/gtest.h>

using namespace ovra::tessel;

namespace {

using layout::slots;

// Slots 0 and 1 are the two destructors everywhere.

template <class Class>
constexpr bool DESTROYED_VIRTUALLY = std::has_virtual_destructor_v<Class>;

template <class Interface>
constexpr bool IS_INTERFACE = std::is_base_of_v<CHandler, Interface>&& std::is_abstract_v<Interface>&&
                                  DESTROYED_VIRTUALLY<Interface> &&
                              sizeof(Interface) == sizeof(void*);

static_assert(DESTROYED_VIRTUALLY<CHandler> && sizeof(CHandler) == sizeof(void*));
static_assert(std::is_abstract_v<CDeviceManager> && DESTROYED_VIRTUALLY<CDeviceManager> &&
              sizeof(CDeviceManager) == sizeof(void*));
static_assert(IS_INTERFACE<CLunHandler> && IS_INTERFACE<CLunGroupHandler> && IS_INTERFACE<CSnapshotHandler>);
static_assert(IS_INTERFACE<CHostHandler> && IS_INTERFACE<CHostGroupHandler> &&
              IS_INTERFACE<CMappingViewHandler>);
static_assert(IS_INTERFACE<CIscsiInitiatorHandler> && IS_INTERFACE<CFCInitiatorHandler>);
static_assert(IS_INTERFACE<CFCPortHandler> && IS_INTERFACE<CFCoEPortHandler> &&
              IS_INTERFACE<CETHPortHandler>);
static_assert(IS_INTERFACE<CDiskAttachHandler> && IS_INTERFACE<CDiskScannerHandler>);

/** The first table entry of an object's class. */
const void* const* tableOf(const void* object)
{
    const void* const* table = nullptr;
    std::memcpy(&table, object, sizeof(table));
    return table;
}

TEST(Slots, OfADeviceManager)
{
    using C = CDeviceManager;
    EXPECT_EQ(slots(&C::loginDevice, &C::logoutDevice, &C::keepAlive, &C::getHandler, &C::useConnection),
              "2 3 4 5 6");
}

TEST(Slots, OfStorageHandlers)
{
    using L = CLunHandler;
    EXPECT_EQ(slots(&L::createLun, &L::getLun, &L::getLunByLunGroup, &L::getLunByHost), "2 3 4 5");
    using G = CLunGroupHandler;
    EXPECT_EQ(slots(&G::createLunGroup, &G::deleteLunGroup, &G::getLunGroup, &G::addLunToLunGroup,
                    &G::removeLunFromLunGroup, &G::getLunGroupByLun, &G::getLunGroupByMappingView,
                    &G::addSnapshotToLunGroup, &G::removeSnapshotFromLunGroup, &G::getLunGroupBySnapshot,
                    &G::getObjNOFromLunGroup),
              "2 3 4 5 6 7 8 9 10 11 12");
    using S = CSnapshotHandler;
    EXPECT_EQ(
        slots(&S::getSnapshot, &S::getSnapshotByLunGroup, &S::getSnapshotByHost, &S::getSnapshotByCondition),
        "2 3 4 5");
}

TEST(Slots, OfAccessHandlers)
{
    using H = CHostHandler;
    EXPECT_EQ(slots(&H::createHost, &H::getHost), "2 3");
    using G = CHostGroupHandler;
    EXPECT_EQ(slots(&G::createHostGroup, &G::deleteHostGroup, &G::getHostGroup, &G::addHostToHostGroup,
                    &G::getHostGroupByHost, &G::getHostGroupByMappingView, &G::removeHostFromHostGroup),
              "2 3 4 5 6 7 8");
    using I = CIscsiInitiatorHandler;
    EXPECT_EQ(slots(&I::createIscsiInitiator, &I::deleteIscsiInitiator, &I::modifyIscsiInitiator,
                    &I::getIscsiInitiator, &I::addIscsiInitiatorToHost, &I::removeIscsiInitiatorFromHost),
              "2 3 4 5 6 7");
    using F = CFCInitiatorHandler;
    EXPECT_EQ(slots(&F::createFCInitiator, &F::deleteFCInitiator, &F::getFCInitiator,
                    &F::addFCInitiatorToHost, &F::removeFCInitiatorFromHost),
              "2 3 4 5 6");
    using M = CMappingViewHandler;
    EXPECT_EQ(slots(&M::createMappingView, &M::deleteMappingView, &M::getMappingView,
                    &M::addLunGroupToMappingView, &M::removeLunGroupFromMappingView,
                    &M::addHostGroupToMappingView, &M::removeHostGroupFromMappingView,
                    &M::getMappingViewByLunGroup, &M::getMappingViewByHostGroup),
              "2 3 4 5 6 7 8 9 10");
}

TEST(Slots, OfPortAndDiskHandlers)
{
    EXPECT_EQ(slots(&CFCPortHandler::getFCPort, &CFCPortHandler::getFCPortBatch), "2 3");
    EXPECT_EQ(slots(&CFCoEPortHandler::getFCoEPort, &CFCoEPortHandler::getFCoEPortBatch), "2 3");
    EXPECT_EQ(slots(&CETHPortHandler::getETHPort, &CETHPortHandler::getETHPortBatch), "2 3");
    using A = CDiskAttachHandler;
    EXPECT_EQ(slots(&A::attachLunToHost, &A::detachLunFromHost, &A::attachSnapshotToHost,
                    &A::detachSnapshotFromHost),
              "2 3 4 5");
    using S = CDiskScannerHandler;
    EXPECT_EQ(slots(&S::scanLunAfterAttach, &S::scanSnapshotAfterAttach, &S::scanLunBeforeDetach,
                    &S::scanSnapshotBeforeDetach),
              "2 3 4 5");
}

TEST(Slots, OfWorkersAreNone)
{
    EXPECT_EQ(slots(&CLunHandlerImpl::getLunByCondition), "-1");
    using G = CLunGroupHandlerImpl;
    EXPECT_EQ(slots(&G::addObjToLunGroup, &G::removeObjFromLunGroup, &G::getLunGroupByObjList,
                    &G::getCountByAssociate),
              "-1 -1 -1 -1");
    using M = CMappingViewHandlerImpl;
    EXPECT_EQ(slots(&M::associateWithMaskingView, &M::removeAssociateFromMappingView,
                    &M::getMappingViewByCondition),
              "-1 -1 -1");
    EXPECT_EQ(slots(&CDiskAttachHandlerImpl::getBuildedName, &CDiskAttachHandlerImpl::addMappingView),
              "-1 -1");
}

TEST(Slots, OfTheRegistryAreTheSecondForAddingAndTheThirdForRemoving)
{
    EXPECT_EQ(slots(&CUserManager::addUser, &CUserManager::removeUser), "1 2");
}

TEST(Slots, OfExceptionsHoldTheirTextBehindTheDestructors)
{
    static_assert(std::is_base_of_v<std::exception, OvraAPIException>);
    static_assert(std::is_base_of_v<OvraAPIException, OvraAPIExceptionWithErrCode>);
    EXPECT_EQ(slots(&OvraAPIException::what, &OvraAPIExceptionWithErrCode::what), "2 2");
    EXPECT_EQ(slots(&OvraAPIExceptionWithErrCode::getErrCode), "-1");
    const OvraAPIExceptionWithErrCode error(7, "text");
    const OvraAPIException failure("text");
    EXPECT_EQ(tableOf(&error)[2], tableOf(&failure)[2]) << "the text is not inherited";
    EXPECT_NE(tableOf(&error)[0], tableOf(&failure)[0]);
}

TEST(Exceptions, SayExceptionBeforeTheirTextAndCarryTheCode)
{
    EXPECT_STREQ(OvraAPIException("text").what(), "Exception:text");
    EXPECT_STREQ(OvraAPIException("").what(), "Exception:");
    const OvraAPIExceptionWithErrCode error(1077949006, "text");
    EXPECT_STREQ(error.what(), "Exception:text");
    EXPECT_EQ(error.getErrCode(), 1077949006);
    const OvraAPIExceptionWithErrCode copy = error;
    EXPECT_STREQ(copy.what(), "Exception:text");
    EXPECT_EQ(copy.getErrCode(), 1077949006);
    const std::exception& base = error;
    EXPECT_STREQ(base.what(), "Exception:text");
}

} // namespace

#ifndef TESSEL_MOCKS_HANDLERS_H
#define TESSEL_MOCKS_HANDLERS_H

/** @file
 * A gmock class for every handler, so that a program's own tests need no array. Link Ovra::TesselMocks. */

#include <tessel/Handlers.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace ovra {
namespace tessel {

/** CLunHandler. */
class MockLunHandler : public CLunHandler
{
public:
    MOCK_METHOD(LunMO, createLun, (LunMO&), (override));
    MOCK_METHOD(LunMO, getLun, (const std::string&), (override));
    MOCK_METHOD(std::vector<LunMO>, getLunByLunGroup, (const std::string&, LunQuery&), (override));
    MOCK_METHOD(std::vector<LunMO>, getLunByHost, (const std::string&, LunQuery&), (override));
};

/** CLunGroupHandler. */
class MockLunGroupHandler : public CLunGroupHandler
{
public:
    MOCK_METHOD(LunGroupMO, createLunGroup, (LunGroupMO&), (override));
    MOCK_METHOD(void, deleteLunGroup, (const std::string&), (override));
    MOCK_METHOD(LunGroupMO, getLunGroup, (const std::string&), (override));
    MOCK_METHOD(void, addLunToLunGroup, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeLunFromLunGroup, (const std::string&, const std::string&), (override));
    MOCK_METHOD(std::vector<LunGroupMO>, getLunGroupByLun, (const std::string&, LunGroupQuery&), (override));
    MOCK_METHOD(LunGroupMO, getLunGroupByMappingView, (const std::string&), (override));
    MOCK_METHOD(void, addSnapshotToLunGroup, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeSnapshotFromLunGroup, (const std::string&, const std::string&), (override));
    MOCK_METHOD(std::vector<LunGroupMO>, getLunGroupBySnapshot, (const std::string&, LunGroupQuery&),
                (override));
    MOCK_METHOD(uint64_t, getObjNOFromLunGroup, (const std::string&), (override));
};

/** CSnapshotHandler. */
class MockSnapshotHandler : public CSnapshotHandler
{
public:
    MOCK_METHOD(SnapshotMO, getSnapshot, (const std::string&), (override));
    MOCK_METHOD(std::vector<SnapshotMO>, getSnapshotByLunGroup, (const std::string&, SnapshotQuery&),
                (override));
    MOCK_METHOD(std::vector<SnapshotMO>, getSnapshotByHost, (const std::string&, SnapshotQuery&), (override));
    MOCK_METHOD(std::vector<SnapshotMO>, getSnapshotByCondition,
                (const std::string&, MOType, SnapshotQuery&, const std::string&), (override));
};

/** CHostHandler. */
class MockHostHandler : public CHostHandler
{
public:
    MOCK_METHOD(HostMO, createHost, (HostMO&), (override));
    MOCK_METHOD(HostMO, getHost, (const std::string&), (override));
};

/** CHostGroupHandler. */
class MockHostGroupHandler : public CHostGroupHandler
{
public:
    MOCK_METHOD(HostGroupMO, createHostGroup, (HostGroupMO&), (override));
    MOCK_METHOD(void, deleteHostGroup, (const std::string&), (override));
    MOCK_METHOD(HostGroupMO, getHostGroup, (const std::string&), (override));
    MOCK_METHOD(void, addHostToHostGroup, (const std::string&, const std::string&), (override));
    MOCK_METHOD(std::vector<HostGroupMO>, getHostGroupByHost, (const std::string&, HostGroupQuery&),
                (override));
    MOCK_METHOD(HostGroupMO, getHostGroupByMappingView, (const std::string&), (override));
    MOCK_METHOD(void, removeHostFromHostGroup, (const std::string&, const std::string&), (override));
};

/** CIscsiInitiatorHandler. */
class MockIscsiInitiatorHandler : public CIscsiInitiatorHandler
{
public:
    MOCK_METHOD(IscsiInitiatorMO, createIscsiInitiator, (IscsiInitiatorMO&), (override));
    MOCK_METHOD(void, deleteIscsiInitiator, (const std::string&), (override));
    MOCK_METHOD(void, modifyIscsiInitiator, (IscsiInitiatorMO&), (override));
    MOCK_METHOD(IscsiInitiatorMO, getIscsiInitiator, (const std::string&), (override));
    MOCK_METHOD(void, addIscsiInitiatorToHost, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeIscsiInitiatorFromHost, (const std::string&), (override));
};

/** CFCInitiatorHandler. */
class MockFCInitiatorHandler : public CFCInitiatorHandler
{
public:
    MOCK_METHOD(FCInitiatorMO, createFCInitiator, (FCInitiatorMO&), (override));
    MOCK_METHOD(void, deleteFCInitiator, (const std::string&), (override));
    MOCK_METHOD(FCInitiatorMO, getFCInitiator, (const std::string&), (override));
    MOCK_METHOD(void, addFCInitiatorToHost, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeFCInitiatorFromHost, (const std::string&), (override));
};

/** CMappingViewHandler. */
class MockMappingViewHandler : public CMappingViewHandler
{
public:
    MOCK_METHOD(MappingViewMO, createMappingView, (MappingViewMO&), (override));
    MOCK_METHOD(void, deleteMappingView, (const std::string&), (override));
    MOCK_METHOD(MappingViewMO, getMappingView, (const std::string&), (override));
    MOCK_METHOD(void, addLunGroupToMappingView, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeLunGroupFromMappingView, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, addHostGroupToMappingView, (const std::string&, const std::string&), (override));
    MOCK_METHOD(void, removeHostGroupFromMappingView, (const std::string&, const std::string&), (override));
    MOCK_METHOD(std::vector<MappingViewMO>, getMappingViewByLunGroup, (const std::string&, MappingViewQuery&),
                (override));
    MOCK_METHOD(std::vector<MappingViewMO>, getMappingViewByHostGroup,
                (const std::string&, MappingViewQuery&), (override));
};

/** CFCPortHandler. */
class MockFCPortHandler : public CFCPortHandler
{
public:
    MOCK_METHOD(FCPortMO, getFCPort, (const std::string&), (override));
    MOCK_METHOD(std::vector<FCPortMO>, getFCPortBatch, (FCPortQuery&), (override));
};

/** CFCoEPortHandler. */
class MockFCoEPortHandler : public CFCoEPortHandler
{
public:
    MOCK_METHOD(FCoEPortMO, getFCoEPort, (const std::string&), (override));
    MOCK_METHOD(std::vector<FCoEPortMO>, getFCoEPortBatch, (FCoEPortQuery&), (override));
};

/** CETHPortHandler. */
class MockETHPortHandler : public CETHPortHandler
{
public:
    MOCK_METHOD(ETHPortMO, getETHPort, (const std::string&), (override));
    MOCK_METHOD(std::vector<ETHPortMO>, getETHPortBatch, (ETHPortQuery&), (override));
};

/** CDiskAttachHandler. */
class MockDiskAttachHandler : public CDiskAttachHandler
{
public:
    MOCK_METHOD(int, attachLunToHost, (const std::string&, const std::string&, const std::string&),
                (override));
    MOCK_METHOD(int, detachLunFromHost, (const std::string&, const std::string&), (override));
    MOCK_METHOD(int, attachSnapshotToHost, (const std::string&, const std::string&, const std::string&),
                (override));
    MOCK_METHOD(int, detachSnapshotFromHost, (const std::string&, const std::string&), (override));
};

/** CDiskScannerHandler. */
class MockDiskScannerHandler : public CDiskScannerHandler
{
public:
    MOCK_METHOD(std::string, scanLunAfterAttach, (std::string&), (override));
    MOCK_METHOD(std::string, scanSnapshotAfterAttach, (std::string&), (override));
    MOCK_METHOD(void, scanLunBeforeDetach, (std::string&), (override));
    MOCK_METHOD(void, scanSnapshotBeforeDetach, (std::string&), (override));
};

} // namespace tessel
} // namespace ovra

#endif

#ifndef TESSEL_MOCKS_ARRAY_H
#define TESSEL_MOCKS_ARRAY_H

/** @file
 * A device manager made of mocks. Link Ovra::TesselMocks. */

#include <tessel/Array.h>
#include <tessel/mocks/Handlers.h>

#include <gmock/gmock.h>

#include <map>
#include <string>

namespace ovra {
namespace tessel {

/** CDeviceManager. */
class MockDeviceManager : public CDeviceManager
{
public:
    MOCK_METHOD(bool, loginDevice,
                (const std::string&, const unsigned int&, const std::string&, const std::string&,
                 const USERTYPE&),
                (override));
    MOCK_METHOD(bool, logoutDevice, (), (override));
    MOCK_METHOD(bool, keepAlive, (), (override));
    MOCK_METHOD(CHandler*, getHandler, (HANDLERTYPE), (override));
    MOCK_METHOD(bool, useConnection,
                (const std::string&, const unsigned int&, const std::string&, const std::string&,
                 const std::string&),
                (override));
};

/**
 * An array that does what a test tells its handlers: a device manager whose getHandler hands out the mocks
 * below. Without expectations every operation returns a record in which nothing is set, and the session
 * operations return true.
 *
 * @code
 * MockArray array;
 * EXPECT_CALL(array.luns, getLun("7")).WillOnce(Return(lun));
 * codeUnderTest(array.manager);        // takes a CDeviceManager&
 * Array owner(array.manager);          // or an Array&
 * @endcode
 */
struct MockArray
{
    MockArray()
    {
        const std::map<HANDLERTYPE, CHandler*> handlers = {
            {LUN_HANDLER, &luns},
            {LUNGROUP_HANDLER, &lunGroups},
            {SNAPSHOT_HANDLER, &snapshots},
            {HOST_HANDLER, &hosts},
            {HOSTGROUP_HANDLER, &hostGroups},
            {ISCSIINITIATOR_HANDLER, &iscsiInitiators},
            {FCINITIATOR_HANDLER, &fcInitiators},
            {MAPPINGVIEW_HANDLER, &mappingViews},
            {FCPORT_HANDLER, &fcPorts},
            {FCOEPORT_HANDLER, &fcoePorts},
            {ETHPORT_HANDLER, &ethPorts},
            {DISKATTACH_HANDLER, &diskAttach},
            {DISKSCANNER_HANDLER, &diskScanner},
        };
        ON_CALL(manager, getHandler(testing::_)).WillByDefault([handlers](HANDLERTYPE type) {
            const auto found = handlers.find(type);
            return found == handlers.end() ? nullptr : found->second;
        });
        ON_CALL(manager, loginDevice(testing::_, testing::_, testing::_, testing::_, testing::_))
            .WillByDefault(testing::Return(true));
        ON_CALL(manager, logoutDevice()).WillByDefault(testing::Return(true));
        ON_CALL(manager, keepAlive()).WillByDefault(testing::Return(true));
        ON_CALL(manager, useConnection(testing::_, testing::_, testing::_, testing::_, testing::_))
            .WillByDefault(testing::Return(true));
    }
    MockArray(const MockArray&) = delete;
    MockArray& operator=(const MockArray&) = delete;

    testing::NiceMock<MockDeviceManager> manager;                 ///< hands out the handlers below
    testing::NiceMock<MockLunHandler> luns;                       ///< CLunHandler
    testing::NiceMock<MockLunGroupHandler> lunGroups;             ///< CLunGroupHandler
    testing::NiceMock<MockSnapshotHandler> snapshots;             ///< CSnapshotHandler
    testing::NiceMock<MockHostHandler> hosts;                     ///< CHostHandler
    testing::NiceMock<MockHostGroupHandler> hostGroups;           ///< CHostGroupHandler
    testing::NiceMock<MockIscsiInitiatorHandler> iscsiInitiators; ///< CIscsiInitiatorHandler
    testing::NiceMock<MockFCInitiatorHandler> fcInitiators;       ///< CFCInitiatorHandler
    testing::NiceMock<MockMappingViewHandler> mappingViews;       ///< CMappingViewHandler
    testing::NiceMock<MockFCPortHandler> fcPorts;                 ///< CFCPortHandler
    testing::NiceMock<MockFCoEPortHandler> fcoePorts;             ///< CFCoEPortHandler
    testing::NiceMock<MockETHPortHandler> ethPorts;               ///< CETHPortHandler
    testing::NiceMock<MockDiskAttachHandler> diskAttach;          ///< CDiskAttachHandler
    testing::NiceMock<MockDiskScannerHandler> diskScanner;        ///< CDiskScannerHandler
};

} // namespace tessel
} // namespace ovra

#endif

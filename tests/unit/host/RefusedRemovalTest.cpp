#include "ScannerTest.h"

#include <tessel/Exception.h>

using testing::ElementsAre;

class RefusedRemoval : public ScannerTest
{
};

TEST_F(RefusedRemoval, WithoutAnIdIsRefused)
{
    std::string none;
    scanner.scanLunBeforeDetach(none);
    scanner.scanSnapshotBeforeDetach(none);
    EXPECT_THAT(platform.journal(),
                ElementsAre("info: enter scanLunBeforeDetach successfully!",
                            "error: lunID is empty! scanLunBeforeDetach", "record! scanLunBeforeDetach 1",
                            "info: enter scanSnapshotBeforeDetach successfully!",
                            "error: snapshotID is empty! scanSnapshotBeforeDetach",
                            "record! scanSnapshotBeforeDetach 1"));
}

TEST_F(RefusedRemoval, WithoutADeviceManagerIsRefused)
{
    CDiskScannerHandlerImpl alone;
    alone.scanLunBeforeDetach(id);
    alone.scanSnapshotBeforeDetach(id);
    EXPECT_EQ(count("error: deviceManage is NULL! scanLunBeforeDetach"), 1u);
    EXPECT_EQ(count("error: deviceManage is NULL! scanSnapshotBeforeDetach"), 1u);
}

class ManagerOfNothing : public CDeviceManagerImpl
{
public:
    CHandler* getHandler(HANDLERTYPE) override { return nullptr; }
};

TEST_F(RefusedRemoval, WithoutAHandlerIsRefused)
{
    ManagerOfNothing empty;
    CDiskScannerHandlerImpl other(&empty);
    other.scanLunBeforeDetach(id);
    other.scanSnapshotBeforeDetach(id);
    EXPECT_EQ(count("error: get lunHandler fail! scanLunBeforeDetach"), 1u);
    EXPECT_EQ(count("error: get snapshotHandler fail! scanSnapshotBeforeDetach"), 1u);
}

TEST_F(RefusedRemoval, PassesTheArraysErrorOnWithOneRecordOfItsCode)
{
    platform.reply(Reply::error(1077936859));
    EXPECT_THROW(scanner.scanLunBeforeDetach(id), OvraAPIExceptionWithErrCode);
    EXPECT_THAT(platform.lines("record"),
                ElementsAre("record! getLun 1077936859", "record! scanLunBeforeDetach 1077936859"));
}

// A user's own test: code over the library, tested without an array.
#include <tessel/mocks/Array.h>

#include <gmock/gmock.h>

using ovra::tessel::Array;
using ovra::tessel::MockArray;
using testing::_;
using testing::Return;
using testing::Throw;

namespace {

/** What is tested: how many bytes a host sees. */
uint64_t bytesSeenBy(const Array& array, const std::string& hostID)
{
    uint64_t bytes = 0;
    for (const LunMO& lun : array.luns().ofHost(hostID)) {
        bytes += lun.CAPACITY;
    }
    return bytes;
}

LunMO lunOf(const std::string& id, uint64_t bytes)
{
    LunMO lun;
    lun.ID = id;
    lun.CAPACITY = bytes;
    return lun;
}

TEST(BytesSeen, areThoseOfAllLuns)
{
    MockArray array;
    EXPECT_CALL(array.luns, getLunByHost("5", _))
        .WillOnce(Return(std::vector<LunMO>{lunOf("1", 512), lunOf("2", 1024)}))
        .WillRepeatedly(Return(std::vector<LunMO>()));
    EXPECT_EQ(bytesSeenBy(Array(array.manager), "5"), 1536u);
}

TEST(BytesSeen, failureOfTheArrayIsPassedOn)
{
    MockArray array;
    EXPECT_CALL(array.luns, getLunByHost).WillOnce(Throw(OvraAPIExceptionWithErrCode(17, "no")));
    EXPECT_THROW(bytesSeenBy(Array(array.manager), "5"), OvraAPIExceptionWithErrCode);
}

TEST(Login, endsWithItsScope)
{
    MockArray array;
    EXPECT_CALL(array.manager, loginDevice("192.0.2.7", 8088, "admin", "secret", USERTYPE_LOCAL))
        .WillOnce(Return(true));
    EXPECT_CALL(array.manager, logoutDevice()).WillOnce(Return(true));
    Array(array.manager).login("192.0.2.7", 8088, "admin", "secret");
}

} // namespace

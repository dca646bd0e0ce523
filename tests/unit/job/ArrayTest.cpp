#include "support/RecordingPlatform.h"

#include <tessel/mocks/Array.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

using namespace ovra::tessel;
using testing::_;
using testing::Return;

namespace {

template <class Interface>
class TypedHandler : public testing::Test
{
};
using Interfaces =
    testing::Types<CLunHandler, CLunGroupHandler, CHostHandler, CHostGroupHandler, CMappingViewHandler,
                   CIscsiInitiatorHandler, CSnapshotHandler, CDiskAttachHandler, CDiskScannerHandler,
                   CFCInitiatorHandler, CETHPortHandler, CFCPortHandler, CFCoEPortHandler>;
TYPED_TEST_SUITE(TypedHandler, Interfaces, ); // the names are the default ones: C++17 wants the comma

TYPED_TEST(TypedHandler, isTheOneOfTheDeviceManager)
{
    const Array array;
    CHandler* const handler = array.manager().getHandler(HandlerType<TypeParam>::value);
    EXPECT_EQ(dynamic_cast<TypeParam*>(handler), &array.template handler<TypeParam>());
    EXPECT_NE(dynamic_cast<TypeParam*>(handler), nullptr);
}

/** Whether handlerOf takes a type. */
template <class Type, class = void>
struct IsHandler : std::false_type
{
};
template <class Type>
struct IsHandler<Type, decltype(void(HandlerTypes::of(HandlerTag<Type>())))> : std::true_type
{
};
static_assert(IsHandler<CLunHandler>::value, "");
static_assert(!IsHandler<CHandler>::value, "the base is no handler");
static_assert(!IsHandler<MockLunHandler>::value, "a derived class may be another one than the handler's");
static_assert(!IsHandler<CDeviceManager>::value, "");

static_assert(!std::is_copy_constructible<Array>::value, "a session has one owner");
static_assert(std::is_nothrow_move_constructible<Array>::value, "");
static_assert(std::is_nothrow_move_assignable<Array>::value, "");

TEST(Array, refusesADeviceManagerWithoutTheHandler)
{
    MockDeviceManager manager;
    EXPECT_CALL(manager, getHandler(LUN_HANDLER)).WillOnce(Return(nullptr));
    EXPECT_THROW(Array(manager).luns(), OvraAPIException);
}

TEST(Array, logsOutOfWhatItLoggedInToAndOfNothingElse)
{
    MockArray array;
    EXPECT_CALL(array.manager, loginDevice("192.0.2.7", 8088u, "admin", "secret", USERTYPE_DOMAIN))
        .WillOnce(Return(true));
    EXPECT_CALL(array.manager, logoutDevice()).WillOnce(Return(true));
    {
        Array owner(array.manager);
        owner.login("192.0.2.7", 8088, "admin", "secret", USERTYPE_DOMAIN);
    }
    Array(array.manager).adopt("192.0.2.7", 8088, "device", "token", "cookie");
    Array{array.manager};
}

TEST(Array, tellsARefusedLoginWithoutThePassword)
{
    MockArray array;
    EXPECT_CALL(array.manager, loginDevice).WillOnce(Return(false));
    EXPECT_CALL(array.manager, logoutDevice).Times(0);
    Array owner(array.manager);
    try {
        owner.login("192.0.2.7", 8088, "admin", "secret");
        FAIL() << "it must throw";
    } catch (const OvraAPIException& e) {
        EXPECT_STREQ(e.what(),
                     "Exception:no login to 192.0.2.7 port 8088 as admin: the last error line of the "
                     "run log has the reason! login");
    }
}

TEST(Array, tellsASessionThatCannotBeAdopted)
{
    MockArray array;
    EXPECT_CALL(array.manager, useConnection("192.0.2.7", 8088u, "device", "token", ""))
        .WillOnce(Return(false));
    Array owner(array.manager);
    EXPECT_THROW(owner.adopt("192.0.2.7", 8088, "device", "token", ""), OvraAPIException);
}

TEST(Array, endsItsSessionBeforeItOpensOrAdoptsAnother)
{
    MockArray array;
    Array owner(array.manager);
    const testing::InSequence order;
    EXPECT_CALL(array.manager, loginDevice).WillOnce(Return(true));
    EXPECT_CALL(array.manager, logoutDevice).WillOnce(Return(false));
    EXPECT_CALL(array.manager, loginDevice).WillOnce(Return(true));
    EXPECT_CALL(array.manager, logoutDevice).WillOnce(Return(true));
    EXPECT_CALL(array.manager, useConnection).WillOnce(Return(true));
    owner.login("192.0.2.7", 8088, "admin", "secret");
    owner.login("192.0.2.8", 8088, "admin", "secret");
    owner.adopt("192.0.2.9", 8088, "device", "token", "cookie");
}

TEST(Array, tellsWhetherTheArrayEndedTheSession)
{
    MockArray array;
    EXPECT_CALL(array.manager, logoutDevice).WillOnce(Return(false));
    Array owner(array.manager);
    EXPECT_TRUE(owner.logout()) << "there was none";
    owner.login("192.0.2.7", 8088, "admin", "secret");
    EXPECT_FALSE(owner.logout());
    EXPECT_TRUE(owner.logout());
}

TEST(Array, movesItsSession)
{
    MockArray first;
    MockArray second;
    EXPECT_CALL(first.manager, logoutDevice).Times(0);
    EXPECT_CALL(second.manager, logoutDevice).Times(0);
    Array a(first.manager);
    a.login("192.0.2.7", 8088, "admin", "secret");
    Array b = std::move(a);
    a = Array(second.manager);
    a.login("192.0.2.8", 8088, "admin", "secret");
    testing::Mock::VerifyAndClearExpectations(&first.manager);
    EXPECT_CALL(first.manager, logoutDevice).WillOnce(Return(true));
    b = std::move(a);
    testing::Mock::VerifyAndClearExpectations(&first.manager);
    testing::Mock::VerifyAndClearExpectations(&second.manager);
    EXPECT_EQ(&b.manager(), &second.manager);
    EXPECT_CALL(second.manager, logoutDevice).WillOnce(Return(true));
}

TEST(Array, startsAndStopsLoggingWithItsScope)
{
    RecordingPlatform& platform = RecordingPlatform::get();
    platform.reset();
    {
        const Array array;
        EXPECT_THAT(platform.journal(), testing::Contains(testing::StartsWith("LogInit")));
        EXPECT_THAT(platform.journal(), testing::Not(testing::Contains("LogFini")));
    }
    EXPECT_THAT(platform.journal(), testing::Contains("LogFini"));
}

TEST(Version, isThatOfTheProject)
{
    EXPECT_EQ(std::to_string(TESSEL_VERSION_MAJOR) + "." + std::to_string(TESSEL_VERSION_MINOR) + "." +
                  std::to_string(TESSEL_VERSION_PATCH),
              PROJECT_VERSION);
    static_assert(TESSEL_VERSION >= 10000, "");
}

TEST(Faces, takeWhatTheHandlersDoNot)
{
    MockArray array;
    const Array owner(array.manager);
    LunGroupMO wanted;
    wanted.NAME = "group";
    EXPECT_CALL(array.lunGroups, createLunGroup).WillOnce([](LunGroupMO& group) {
        group.APPTYPE = 0;
        return group;
    });
    EXPECT_EQ(owner.lunGroups().createLunGroup(wanted).NAME, "group");
    EXPECT_EQ(wanted.APPTYPE, 100) << "the caller's record is his";

    EXPECT_CALL(array.luns, createLun).WillOnce(Return(LunMO()));
    owner.luns().createLun(LunMO());
    EXPECT_CALL(array.diskScanner, scanLunAfterAttach(testing::StrEq("7"))).WillOnce(Return("/dev/sdc"));
    EXPECT_EQ(owner.diskScanner().scanLunAfterAttach("7"), "/dev/sdc");
    EXPECT_CALL(array.diskScanner, scanSnapshotBeforeDetach(testing::StrEq("8")));
    owner.diskScanner().scanSnapshotBeforeDetach("8");
    EXPECT_CALL(array.luns, getLun("7")).WillOnce(Return(LunMO()));
    owner.luns()->getLun("7");
}

} // namespace

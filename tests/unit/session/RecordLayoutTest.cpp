// The members of records and query records: order, types and default values.

#include "unit/session/Layout.h"

#include "storage/LunHandlerImpl.h"

#include <tessel/Tessel.h>

#include <gtest/gtest.h>

using namespace ovra::tessel;

namespace {

using layout::members;

template <class Record>
constexpr bool COPIES = std::is_copy_constructible_v<Record>&& std::is_copy_assignable_v<Record>&&
    std::is_default_constructible_v<Record>;

static_assert(COPIES<LunMO> && COPIES<LunGroupMO> && COPIES<SnapshotMO> && COPIES<HostMO> &&
              COPIES<HostGroupMO>);
static_assert(COPIES<IscsiInitiatorMO> && COPIES<FCInitiatorMO> && COPIES<MappingViewMO>);
static_assert(COPIES<FCPortMO> && COPIES<FCoEPortMO> && COPIES<ETHPortMO>);

// Which records have a table of virtual functions.
static_assert(std::has_virtual_destructor_v<LunMO> && std::has_virtual_destructor_v<LunQuery>);
static_assert(std::has_virtual_destructor_v<SnapshotMO> && std::has_virtual_destructor_v<SnapshotQuery>);
static_assert(std::has_virtual_destructor_v<MappingViewMO> &&
              std::has_virtual_destructor_v<MappingViewQuery>);
static_assert(!std::is_polymorphic_v<LunGroupMO> && !std::is_polymorphic_v<LunGroupQuery>);
static_assert(!std::is_polymorphic_v<HostGroupMO> && !std::is_polymorphic_v<HostGroupQuery>);
static_assert(!std::is_polymorphic_v<HostMO>);
static_assert(!std::is_polymorphic_v<IscsiInitiatorMO> && !std::is_polymorphic_v<FCInitiatorMO>);
static_assert(!std::is_polymorphic_v<FCPortMO> && !std::is_polymorphic_v<FCPortQuery>);
static_assert(!std::is_polymorphic_v<FCoEPortMO> && !std::is_polymorphic_v<FCoEPortQuery>);
static_assert(!std::is_polymorphic_v<ETHPortMO> && !std::is_polymorphic_v<ETHPortQuery>);

/** The record of a query, or the record itself. */
template <class Record>
auto& recordOf(Record& record)
{
    return record;
}
LunMO& recordOf(LunQuery& query)
{
    return query.filter;
}
SnapshotMO& recordOf(SnapshotQuery& query)
{
    return query.filter;
}
MappingViewMO& recordOf(MappingViewQuery& query)
{
    return query.filter;
}

template <class Type>
void expectMoves()
{
    static_assert(std::is_nothrow_move_constructible_v<Type> && std::is_nothrow_move_assignable_v<Type>);
    Type first;
    recordOf(first).NAME = std::string(100, 'x');
    const char* const text = recordOf(first).NAME.data();
    Type second(std::move(first));
    EXPECT_EQ(recordOf(second).NAME.data(), text) << "copied";
    Type third;
    third = std::move(second);
    EXPECT_EQ(recordOf(third).NAME.data(), text) << "copied";
    // A list that grows moves what it holds.
    std::vector<Type> list;
    list.push_back(std::move(third));
    list.reserve(list.capacity() + 1);
    EXPECT_EQ(recordOf(list.front()).NAME.data(), text) << "copied";
}

TEST(Records, AreMovedWithoutACopy)
{
    expectMoves<LunMO>();
    expectMoves<LunQuery>();
    expectMoves<LunGroupMO>();
    expectMoves<SnapshotMO>();
    expectMoves<SnapshotQuery>();
    expectMoves<HostMO>();
    expectMoves<HostGroupMO>();
    expectMoves<IscsiInitiatorMO>();
    expectMoves<FCInitiatorMO>();
    expectMoves<MappingViewMO>();
    expectMoves<MappingViewQuery>();
    expectMoves<FCPortMO>();
    expectMoves<FCoEPortMO>();
    expectMoves<ETHPortMO>();
}

TEST(Members, OfStorageRecords)
{
    using L = LunMO;
    EXPECT_EQ(members(L(), &L::ID, &L::NAME, &L::PARENTTYPE, &L::PARENTID, &L::PARENTNAME, &L::HEALTHSTATUS,
                      &L::RUNNINGSTATUS, &L::DESCRIPTION, &L::ALLOCTYPE, &L::CAPACITY, &L::ALLOCCAPACITY,
                      &L::ALLOCCAPACITYRAW, &L::THINCAPACITYUSAGE, &L::EXPOSEDTOINITIATOR, &L::WWN,
                      &L::OWNINGCONTROLLER, &L::WORKINGCONTROLLER, &L::ISADD2LUNGROUP),
              "s s u32=0 s s u32=0 u32=0 s u32=100 u64=max u64=max u64=0 u64=0 b=0 s s s i32=-1");
    using G = LunGroupMO;
    EXPECT_EQ(
        members(G(), &G::ID, &G::NAME, &G::DESCRIPTION, &G::ISADD2MAPPINGVIEW, &G::APPTYPE, &G::GROUPTYPE),
        "s s s i32=-1 i32=100 u64=0");
    using S = SnapshotMO;
    EXPECT_EQ(members(S(), &S::ID, &S::NAME, &S::PARENTTYPE, &S::PARENTID, &S::PARENTNAME, &S::HEALTHSTATUS,
                      &S::RUNNINGSTATUS, &S::DESCRIPTION, &S::USERCAPACITY, &S::CONSUMEDCAPACITY, &S::WWN),
              "s s i32=0 s s u32=0 u32=0 s u64=max u64=max s");
    using T = CLunUserSettableFeature;
    EXPECT_EQ(members(T(), &T::writePolicy, &T::mirrorPolicy, &T::prefetchPolicy, &T::prefetchValue,
                      &T::dataTransferPolicy, &T::initialDistributePolicy, &T::reserved1, &T::reserved2,
                      &T::reserved3),
              "u64=1 u64=1 u64=3 u64=0 u64=0 u64=0 u64=10 s u32=0");
}

TEST(Members, OfAccessRecords)
{
    using H = HostMO;
    EXPECT_EQ(members(H(), &H::ID, &H::NAME, &H::PARENTTYPE, &H::PARENTID, &H::LOCATION, &H::HEALTHSTATUS,
                      &H::RUNNINGSTATUS, &H::DESCRIPTION, &H::OPERATIONSYSTEM, &H::IP, &H::ISADD2HOSTGROUP),
              "s s u32=0 s s u32=0 u32=0 s u32=100 s i32=-1");
    using G = HostGroupMO;
    EXPECT_EQ(members(G(), &G::ID, &G::NAME, &G::DESCRIPTION, &G::ISADD2MAPPINGVIEW), "s s s i32=-1");
    using I = IscsiInitiatorMO;
    EXPECT_EQ(members(I(), &I::ID, &I::NAME, &I::PARENTID, &I::PARENTNAME, &I::PARENTTYPE, &I::HEALTHSTATUS,
                      &I::RUNNINGSTATUS, &I::ISFREE, &I::USECHAP, &I::NORMALVERMODE, &I::DISCOVERYVERMODE,
                      &I::CHAPNAME, &I::CHAPPASSWORD, &I::CHAPOLDPASSWORD, &I::CHAPNAMEINITATORVERTARGET,
                      &I::CHAPPASSWORDINITATORVERTARGET, &I::CHAPOLDPASSWORDINITATORVERTARGET),
              "s s s s u32=0 u32=0 u32=0 b=0 b=0 s=0 s=0 s s s s s s");
    using F = FCInitiatorMO;
    EXPECT_EQ(members(F(), &F::ID, &F::NAME, &F::PARENTID, &F::PARENTNAME, &F::HEALTHSTATUS,
                      &F::RUNNINGSTATUS, &F::ISFREE),
              "s s s s u32=0 u32=0 b=0");
    using M = MappingViewMO;
    EXPECT_EQ(members(M(), &M::ID, &M::NAME, &M::DESCRIPTION, &M::ENABLEINBANDCOMMAND), "s s s i32=0");
}

TEST(Members, OfPortRecords)
{
    using F = FCPortMO;
    EXPECT_EQ(
        members(F(), &F::ID, &F::NAME, &F::LOCATION, &F::HEALTHSTATUS, &F::RUNNINGSTATUS, &F::LOGICTYPE,
                &F::RUNSPEED, &F::CONFSPEED, &F::WWN, &F::INIORTGT, &F::FCRUNMODE, &F::LOSTSIGNALS,
                &F::BADCHARNUMBER, &F::LOSTSYNC, &F::LINKFAIL, &F::STARTTIME, &F::FLOGINDELAYTIMES,
                &F::MAXSUPPORTSPEED),
        "s s s u32=0 u32=0 u32=100 i64=0 u64=max s u32=0 u32=100 u64=max u64=max u64=max u64=max u64=max "
        "u64=max u64=max");
    using O = FCoEPortMO;
    EXPECT_EQ(members(O(), &O::ID, &O::NAME, &O::LOCATION, &O::HEALTHSTATUS, &O::RUNNINGSTATUS, &O::LOGICTYPE,
                      &O::RUNSPEED, &O::WWN, &O::INIORTGT, &O::ERRORPACKETS, &O::LOSTPACKETS,
                      &O::OVERFLOWEDPACKETS, &O::STARTTIME, &O::VLANID),
              "s s s u32=0 u32=0 u32=100 i64=0 s u32=0 u64=max u64=max u64=max u64=max s");
    using E = ETHPortMO;
    EXPECT_EQ(
        members(E(), &E::ID, &E::NAME, &E::LOCATION, &E::HEALTHSTATUS, &E::RUNNINGSTATUS, &E::LOGICTYPE,
                &E::MACADDRESS, &E::INIORTGT, &E::MTU, &E::ISCSITCPPORT, &E::ISCSINAME, &E::ERRORPACKETS,
                &E::LOSTPACKETS, &E::OVERFLOWEDPACKETS, &E::STARTTIME, &E::SPEED, &E::IPV4MASK,
                &E::IPV4ADDRESS, &E::IPV6MASK, &E::IPV6ADDRESS),
        "s s s u32=0 u32=0 u32=100 s u32=0 u64=max s s u64=max u64=max u64=max u64=max u64=max s s s s");
}

/** A query record is its filter, the start and the count, and is made of the three. */
template <class Query, class Record>
void expectQuery()
{
    EXPECT_EQ(members(Query(), &Query::filter, &Query::start, &Query::count), "record u64=0 u64=0");
    Record filter;
    filter.NAME = "a";
    Query query(filter, 3, 4);
    EXPECT_EQ(members(query, &Query::filter, &Query::start, &Query::count), "record u64=3 u64=4");
    filter.NAME = "b";
    EXPECT_EQ(query.filter.NAME, "a") << "the filter is not a copy";
    const Query copy = query;
    EXPECT_EQ(copy.filter.NAME, "a");
    static_assert(std::is_same_v<decltype(query.filter), Record>);
    static_assert(std::is_same_v<decltype(query.start), unsigned long>);
    static_assert(std::is_same_v<decltype(query.count), unsigned long>);
}

TEST(Members, OfQueryRecords)
{
    expectQuery<LunQuery, LunMO>();
    expectQuery<LunGroupQuery, LunGroupMO>();
    expectQuery<SnapshotQuery, SnapshotMO>();
    expectQuery<HostGroupQuery, HostGroupMO>();
    expectQuery<MappingViewQuery, MappingViewMO>();
    expectQuery<FCPortQuery, FCPortMO>();
    expectQuery<FCoEPortQuery, FCoEPortMO>();
    expectQuery<ETHPortQuery, ETHPortMO>();
}

TEST(Members, AreCopiedAllByCopyAndAssignment)
{
    MappingViewMO view;
    view.ID = "1";
    view.NAME = "n";
    view.DESCRIPTION = "d";
    view.ENABLEINBANDCOMMAND = 1;
    MappingViewMO assigned;
    assigned = view;
    for (const MappingViewMO& copy : {MappingViewMO(view), assigned}) {
        EXPECT_EQ(copy.ID + copy.NAME + copy.DESCRIPTION, "1nd");
        EXPECT_EQ(copy.ENABLEINBANDCOMMAND, 1);
    }
}

TEST(Enumerations, HaveTheirNumbers)
{
    static_assert(LUN_HANDLER == 2 && LUNGROUP_HANDLER == 3 && HOST_HANDLER == 4 && HOSTGROUP_HANDLER == 5);
    static_assert(MAPPINGVIEW_HANDLER == 6 && ISCSIINITIATOR_HANDLER == 7 && SNAPSHOT_HANDLER == 8);
    static_assert(DISKATTACH_HANDLER == 9 && DISKSCANNER_HANDLER == 10 && FCINITIATOR_HANDLER == 11);
    static_assert(ETHPORT_HANDLER == 12 && FCPORT_HANDLER == 13 && FCOEPORT_HANDLER == 14);
    static_assert(MO_LUN == 11 && MO_HOSTGROUP == 14 && MO_HOST == 21 && MO_SNAPSHOT == 27);
    static_assert(MO_STORAGEPOOL == 216 && MO_MAPPINGVIEW == 245 && MO_LUNGROUP == 256);
    static_assert(sizeof(HANDLERTYPE) == 4 && sizeof(MOType) == 4 && sizeof(USERTYPE) == 4);
}

} // namespace

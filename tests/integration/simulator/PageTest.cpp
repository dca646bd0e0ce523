// What a page costs the array does not depend on how many objects there are before and behind it.

#include "model/BulkLuns.h"
#include "model/Operations.h"
#include "support/Folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

using namespace arraysim;

namespace {

/** What a page took: memory that was asked for, and looks at an object for a filter or a record. */
std::atomic<std::size_t> g_taken{0};

} // namespace

void* operator new(std::size_t size)
{
    ++g_taken;
    if (void* const memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

constexpr unsigned PAGE = 100;
constexpr unsigned MANY_LUNS = 5000;

/** LUNs whose field ISADD2LUNGROUP counts how often it is looked at. */
ObjectType countedLuns()
{
    ObjectType luns = objectType(Type::LUN);
    for (Field& field : luns.fields) {
        if (field.key == "ISADD2LUNGROUP") {
            field.compute = [really = field.compute](const World& world, const Object& lun) {
                ++g_taken;
                return really(world, lun);
            };
        }
    }
    return luns;
}

/** An array of which a test asks without any wire between. */
class SimulatorPage : public ::testing::Test
{
protected:
    SimulatorPage() : store(folder.path() + "/array.db"), world(store) {}

    std::string make(Type type, const std::string& name)
    {
        Json::Value body(Json::objectValue);
        body["NAME"] = name;
        if (type == Type::HOST) {
            body["OPERATIONSYSTEM"] = 0;
        }
        return createObject(world, objectType(type), body, {})["ID"].asString();
    }

    void bind(Type owner, const std::string& ownerId, Type member, const std::string& memberId)
    {
        World::Transaction transaction(world);
        associate(world, *relationBetween(owner, member), ownerId, memberId);
        transaction.commit();
    }

    /** Shows a host new LUNs by a group of each kind. @return the LUN group */
    std::string show(const std::string& host, const std::string& name, unsigned luns)
    {
        Json::Value bulk(Json::objectValue);
        bulk["count"] = luns;
        bulk["lungroup"] = make(Type::LUN_GROUP, name);
        createLuns(world, bulk);
        const std::string hosts = make(Type::HOST_GROUP, name);
        const std::string view = make(Type::MAPPING_VIEW, name);
        bind(Type::HOST_GROUP, hosts, Type::HOST, host);
        bind(Type::MAPPING_VIEW, view, Type::LUN_GROUP, bulk["lungroup"].asString());
        bind(Type::MAPPING_VIEW, view, Type::HOST_GROUP, hosts);
        return bulk["lungroup"].asString();
    }

    /** The IDs of a page of LUNs, and what it took. */
    std::pair<std::vector<std::string>, std::size_t> page(const AssociatedWith& of,
                                                          const std::vector<Condition>& filter, Range range)
    {
        const std::size_t before = g_taken;
        const Json::Value records = listObjects(world, counted, {filter, range}, of);
        const std::size_t taken = g_taken - before;
        std::vector<std::string> ids;
        for (const auto& record : records) {
            ids.push_back(record["ID"].asString());
        }
        return {ids, taken};
    }

    struct Asked
    {
        AssociatedWith of;
        std::vector<Condition> filter;
    };

    /** Pages of many, from the end to the beginning, take at most half more than one of few; but for the
     * first. */
    void expectTheSame(const Asked& few, const Asked& many, std::size_t records)
    {
        const auto one = page(few.of, few.filter, {0, PAGE});
        ASSERT_EQ(one.first.size(), records);
        for (unsigned number = 1; number <= 3; ++number) {
            const unsigned from = records == 1 ? 0 : MANY_LUNS - PAGE * number;
            const auto other = page(many.of, many.filter, {from, from + PAGE});
            ASSERT_EQ(other.first.size(), records);
            if (number > 1) {
                EXPECT_LE(2 * other.second, 3 * one.second)
                    << "type " << static_cast<int>(few.of.type) << ", filter of " << few.filter.size();
            }
        }
    }

    tessel_test::Folder folder;
    Store store;
    World world;
    const ObjectType counted = countedLuns();
};

TEST_F(SimulatorPage, CostsTheSameInAGroupOfManyAsInOneOfAPage)
{
    const std::string fewHost = make(Type::HOST, "few");
    const std::string manyHost = make(Type::HOST, "many");
    const AssociatedWith few{Type::LUN_GROUP, show(fewHost, "few", PAGE)};
    const AssociatedWith many{Type::LUN_GROUP, show(manyHost, "many", MANY_LUNS)};
    show(fewHost, "few, one more", 1); // a host of two groups, whose LUNs are put together
    show(manyHost, "many, one more", 1);

    const std::vector<std::vector<Condition>> filters = {
        {}, {{"ISADD2LUNGROUP", "1"}}, {{"PARENTID", "0"}, {"ISADD2LUNGROUP", "1"}}};
    for (const auto& filter : filters) {
        expectTheSame({few, filter}, {many, filter}, PAGE);
        expectTheSame({{Type::HOST, fewHost}, filter}, {{Type::HOST, manyHost}, filter}, PAGE);
    }
    const std::vector<Condition> one = {{"ISADD2LUNGROUP", "1"}, {"ID", std::to_string(PAGE)}};
    const std::vector<Condition> oneOfMany = {{"ISADD2LUNGROUP", "1"}, {"ID", std::to_string(MANY_LUNS)}};
    expectTheSame({few, one}, {many, oneOfMany}, 1);
    expectTheSame({{Type::HOST, fewHost}, one}, {{Type::HOST, manyHost}, oneOfMany}, 1);
}

TEST_F(SimulatorPage, OfAFilterFollowsEveryChange)
{
    const std::string host = make(Type::HOST, "host");
    const std::string group = show(host, "luns", 2 * PAGE);
    show(host, "more", 1);
    const std::vector<Condition> healthy = {{"HEALTHSTATUS", "1"}};
    const auto ids = [&](Range range) { return page({Type::HOST, host}, healthy, range).first; };
    Json::Value ill(Json::objectValue);
    ill["HEALTHSTATUS"] = 2;

    const auto all = ids({0, 1000});
    ASSERT_EQ(all.size(), 2 * PAGE + 1);
    EXPECT_EQ(ids({0, 2}), std::vector<std::string>(all.begin(), all.begin() + 2));
    adjustObject(world, objectType(Type::LUN), all[0], ill);
    EXPECT_EQ(ids({0, 2}), std::vector<std::string>(all.begin() + 1, all.begin() + 3));
    EXPECT_EQ(ids({2 * PAGE - 1, 1000}), std::vector<std::string>{all.back()}) << "further on";
    EXPECT_EQ(ids({0, 1}), std::vector<std::string>{all[1]}) << "and back";

    {
        World::Transaction transaction(world);
        dissociate(world, *relationBetween(Type::LUN_GROUP, Type::LUN), group, all[1]);
        transaction.commit();
    }
    EXPECT_EQ(ids({0, 1}), std::vector<std::string>{all[2]});
    {
        World::Transaction undone(world);
        dissociate(world, *relationBetween(Type::LUN_GROUP, Type::LUN), group, all[2]);
        EXPECT_EQ(ids({0, 1}), std::vector<std::string>{all[3]});
    }
    EXPECT_EQ(ids({0, 1}), std::vector<std::string>{all[2]}) << "an operation that was undone";
}

} // namespace

// What a page costs the array does not depend on how many objects there are before and behind it.

#include "model/BulkLuns.h"
#include "model/Operations.h"
#include "support/Folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <limits>

using namespace arraysim;

namespace {

constexpr unsigned PAGE = 100;
constexpr unsigned MANY_LUNS = 20000;

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

    /** The IDs of a page of LUNs, and the CPU time of it. */
    std::pair<std::vector<std::string>, double> page(const AssociatedWith& of,
                                                     const std::vector<Condition>& filter, Range range)
    {
        timespec begin = {};
        timespec end = {};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &begin);
        const Json::Value records = listObjects(world, objectType(Type::LUN), {filter, range}, of);
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
        std::vector<std::string> ids;
        for (const auto& record : records) {
            ids.push_back(record["ID"].asString());
        }
        return {ids, static_cast<double>(end.tv_sec - begin.tv_sec) +
                         static_cast<double>(end.tv_nsec - begin.tv_nsec) * 1e-9};
    }

    struct Asked
    {
        AssociatedWith of;
        std::vector<Condition> filter;
    };

    /** Pages of many, from the end to the beginning, cost at most half more than one of few. */
    void expectTheSame(const Asked& few, const Asked& many, std::size_t records)
    {
        constexpr unsigned ROUNDS = 20; // the least of so many has not met what else the machine does
        double least = std::numeric_limits<double>::max();
        double leastOfMany = least;
        for (unsigned round = 0; round < ROUNDS; ++round) {
            const unsigned from = records == 1 ? 0 : MANY_LUNS - PAGE * (round + 1);
            const auto one = page(few.of, few.filter, {0, PAGE});
            const auto other = page(many.of, many.filter, {from, from + PAGE});
            ASSERT_EQ(one.first.size(), records);
            ASSERT_EQ(other.first.size(), records);
            least = std::min(least, one.second);
            leastOfMany = std::min(leastOfMany, other.second);
        }
        EXPECT_LE(leastOfMany, 1.5 * least)
            << "type " << static_cast<int>(few.of.type) << ", filter of " << few.filter.size();
    }

    tessel_test::Folder folder;
    Store store;
    World world;
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
        {}, {{"ISADD2LUNGROUP", "1"}}, {{"PARENTID", "0"}, {"ALLOCTYPE", "0"}}};
    for (const auto& filter : filters) {
        expectTheSame({few, filter}, {many, filter}, PAGE);
        expectTheSame({{Type::HOST, fewHost}, filter}, {{Type::HOST, manyHost}, filter}, PAGE);
    }
    const std::vector<Condition> one = {{"ID", std::to_string(PAGE)}};
    const std::vector<Condition> oneOfMany = {{"ID", std::to_string(MANY_LUNS)}};
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

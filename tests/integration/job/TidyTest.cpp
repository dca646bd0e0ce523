#include "JobTest.h"

#include <tessel/Tidy.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>

using namespace ovra::tessel;
using testing::IsEmpty;

namespace {

class Tidy : public JobTest
{
protected:
    void SetUp() override
    {
        JobTest::SetUp();
        host = make("host", "host");
        other = make("host", "other");
        options.isDryRun = false;
    }

    std::string make(const std::string& resource, const std::string& name,
                     const std::string& description = "") const
    {
        Json::Value object;
        object["NAME"] = name;
        if (resource == "host") {
            object["OPERATIONSYSTEM"] = 0;
        }
        if (!description.empty()) {
            object["DESCRIPTION"] = description;
        }
        return sim.create(resource, object)["ID"].asString();
    }

    /** A host group of the host and, where a name is given, a mapping view of it. @return ID of the view. */
    std::string leave(const std::string& group, const std::string& view = "", const std::string& of = "",
                      const std::string& description = "", const std::string& viewDescription = "") const
    {
        const std::string groupId = make("hostgroup", group, description);
        put("hostgroup", groupId, MO_HOST, of.empty() ? host : of);
        if (view.empty()) {
            return groupId;
        }
        const std::string viewId = make("mappingview", view, viewDescription);
        put("mappingview", viewId, MO_HOSTGROUP, groupId);
        return viewId;
    }

    std::vector<std::string> names(const std::string& resource) const
    {
        std::vector<std::string> all;
        const Json::Value records = sim.control("GET", "/objects/" + resource)["data"];
        for (const Json::Value& record : records) {
            all.push_back(record["NAME"].asString());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    TidyResult tidyUp() { return tidy(array.manager(), host, options, tell); }

    std::string host;
    std::string other;
    TidyOptions options;
    std::function<bool(const TidyFinding&)> tell;
};

std::string at(int second)
{
    return "_" + std::to_string(1700000000 + second);
}

TEST_F(Tidy, FindsAndRemovesExactlyWhatOldAttachesLeft)
{
    for (int i = 0; i < 5; ++i) { // 50 objects of an administrator
        const std::string n = std::to_string(i);
        leave("hostgroup_17000000" + n);                                 // a digit short
        leave("hostgroup_1700000x" + n + "0");                           // no number
        leave("Hostgroup" + at(i));                                      // another prefix
        leave("hostgroup" + at(1000 + i), "", "", "payroll");            // a description
        leave("hostgroup_9" + std::string(8, '0') + n);                  // a time to come
        leave("hostgroup" + at(2000 + i), "", other);                    // of another host
        leave("hostgroup" + at(3000 + i), "mappingview_of_payroll" + n); // 2: bound to a view of another name
        const std::string luns = make("lungroup", "lungroup" + at(i));   // 2: bound to LUNs
        put("lungroup", luns, MO_LUN, sim.createLun("lun " + n));
        put("mappingview", leave("tessel_host_" + n, "mappingview" + at(4000 + i)), MO_LUNGROUP, luns);
    }
    const std::vector<std::string> groups = names("hostgroup");
    const std::vector<std::string> views = names("mappingview");
    const std::vector<std::string> lunGroups = names("lungroup");
    ASSERT_EQ(groups.size() + views.size() + lunGroups.size(), 55u);
    for (int i = 0; i < 254; ++i) {
        leave("hostgroup" + at(10000 + i), "mappingview" + at(10000 + i));
    }

    options.isDryRun = true;
    EXPECT_EQ(tidyUp().removed, 508u);
    EXPECT_EQ(names("hostgroup").size(), groups.size() + 254) << "a dry run";

    options.isDryRun = false;
    const TidyResult result = tidyUp();
    EXPECT_EQ(result.removed, 508u);
    EXPECT_TRUE(result.isComplete);
    EXPECT_EQ(names("hostgroup"), groups);
    EXPECT_EQ(names("mappingview"), views);
    EXPECT_EQ(names("lungroup"), lunGroups);
    EXPECT_EQ(tidyUp().removed, 0u);
}

TEST_F(Tidy, ClearsWhatTheOldAttachAndDetachLeave)
{
    newInitiator();
    array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
    const std::string lun = sim.createLun("lun");
    array.diskAttach()->attachLunToHost(lun, INITIATOR, "192.0.2.9");
    options.minimumAgeSeconds = 0;
    std::vector<std::string> reasons;
    tell = [&](const TidyFinding& finding) {
        reasons.push_back(finding.reason);
        return true;
    };
    EXPECT_EQ(tidyUp().removed, 0u) << "it is in use: " << testing::PrintToString(reasons);
    EXPECT_TRUE(sees(lun));
    array.diskAttach()->detachLunFromHost(lun, INITIATOR);
    EXPECT_EQ(tidyUp().removed, 2u);
    EXPECT_THAT(names("hostgroup"), IsEmpty());
    EXPECT_THAT(names("mappingview"), IsEmpty());
}

TEST_F(Tidy, RemovesAnEmptyLunGroupWithItsView)
{
    const std::string luns = make("lungroup", "lungroup" + at(0));
    put("mappingview", leave("hostgroup" + at(0), "mappingview" + at(0)), MO_LUNGROUP, luns);
    EXPECT_EQ(tidyUp().removed, 3u);
    EXPECT_THAT(names("lungroup"), IsEmpty());
}

TEST_F(Tidy, PutsTheHostBackIntoAGroupThatTheArrayKeeps)
{
    const std::string group = leave("hostgroup" + at(0));
    put("hostgroup", group, MO_HOST, other);
    std::string reason;
    tell = [&](const TidyFinding& finding) {
        reason = finding.reason;
        return true;
    };
    EXPECT_EQ(tidyUp().kept, 1u);
    EXPECT_EQ(reason.compare(0, 18, "the array keeps it"), 0) << reason;
    EXPECT_EQ(array.hostGroups().ofHost(host).all().size(), 1u);
    EXPECT_EQ(array.hostGroups().ofHost(other).all().size(), 1u);
}

TEST_F(Tidy, LeavesTheObjectsOfConvergingAccess)
{
    newInitiator();
    array.iscsiInitiators()->addIscsiInitiatorToHost(INITIATOR, host);
    const std::string lun = sim.createLun("lun");
    show(lun);
    hide(lun);
    EXPECT_EQ(tidyUp().removed, 0u);
    EXPECT_EQ(names("mappingview").size(), 1u);
}

TEST_F(Tidy, EndsEarlyAndGoesOnLater)
{
    for (int i = 0; i < 10; ++i) {
        leave("hostgroup" + at(i), "mappingview" + at(i));
    }
    options.most = 7;
    TidyResult result = tidyUp();
    EXPECT_EQ(result.removed, 7u);
    EXPECT_FALSE(result.isComplete);
    options.most = 0;
    tell = [](const TidyFinding&) { return false; };
    result = tidyUp();
    EXPECT_EQ(result.removed, 1u);
    EXPECT_FALSE(result.isComplete);
    tell = nullptr;
    result = tidyUp();
    EXPECT_EQ(result.removed, 12u);
    EXPECT_TRUE(result.isComplete);
}

TEST_F(Tidy, WaitsForAnAttachThatMayBeAtWork)
{
    leave("hostgroup_" + std::to_string(std::time(nullptr)));
    options.minimumAgeSeconds = 1;
    EXPECT_EQ(tidyUp().removed, 1u);
    leave("hostgroup_" + std::to_string(std::time(nullptr)));
    options.minimumAgeSeconds = 3600;
    EXPECT_EQ(tidyUp().kept, 1u) << "nor for longer than a moment";
}

TEST_F(Tidy, WorksOnWhileTheArrayIsBusy)
{
    leave("hostgroup" + at(0), "mappingview" + at(0));
    for (unsigned skip = 0; skip < 12; skip += 2) {
        Json::Value fault;
        fault["action"] = "error";
        fault["code"] = 1077949006;
        fault["skip"] = skip;
        sim.addFault(fault);
    }
    EXPECT_EQ(tidyUp().removed, 2u);
}

} // namespace

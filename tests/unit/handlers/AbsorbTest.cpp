// Additions and removals whose failures are told and not passed on.

#include "unit/handlers/HandlerTest.h"

#include <tessel/Failure.h>

namespace {

using namespace handlers;
using journal::done;
using testing::ElementsAreArray;
using M = CDeviceManagerImpl&;

/** An absorbing operation, one failure of its request, and the warning that comes of it. */
struct Absorption
{
    std::string operation;
    std::string worker; ///< empty: the operation sends the request itself
    std::string request;
    int code; ///< 0: no answer
    std::string warning;
    std::function<void(CDeviceManagerImpl&)> call;
};

void PrintTo(const Absorption& absorption, std::ostream* out)
{
    *out << absorption.operation << " " << absorption.code;
}

class EveryAbsorption : public HandlerTest, public testing::WithParamInterface<Absorption>
{
protected:
    Lines whole(const Lines& seen) const
    {
        const Absorption& a = GetParam();
        return a.worker.empty() ? done(a.operation, seen) : done(a.operation, done(a.worker, seen));
    }
};

TEST_P(EveryAbsorption, ReturnsNormallyWithAWarningAndSuccessInItsRecords)
{
    const Absorption& a = GetParam();
    const std::string failing = a.worker.empty() ? a.operation : a.worker;
    platform.reply(a.code != 0 ? Reply::error(a.code, "no") : Reply::noAnswer(7));
    EXPECT_EQ(outcomeOf([&] { a.call(manager); }), Outcome::returned());
    const std::string error =
        a.code != 0 ? journal::errorAnswer(a.code, "no", failing) : journal::noAnswer(failing);
    EXPECT_THAT(platform.journal(),
                ElementsAreArray(whole({a.request, "error: " + error, "warn: " + a.warning})));
}

TEST_P(EveryAbsorption, LeavesWhatFailedToBeAskedForUnlessThereWasNothingToDo)
{
    const Absorption& a = GetParam();
    platform.reply(a.code != 0 ? Reply::error(a.code, "no") : Reply::noAnswer(7));
    a.call(manager);
    const Failure failure = lastFailure();
    const bool isHarmless = a.warning.find("ignore it") != std::string::npos;
    EXPECT_EQ(failure.kind, isHarmless    ? FailureKind::NONE
                            : a.code != 0 ? FailureKind::REFUSED
                                          : FailureKind::NOT_REACHABLE);
    EXPECT_EQ(failure.code, isHarmless ? 0 : a.code);
    a.call(manager);
    EXPECT_FALSE(lastFailure()) << "the next one succeeds";
}

TEST_P(EveryAbsorption, WithoutAFailureWarnsOfNothing)
{
    EXPECT_EQ(outcomeOf([&] { GetParam().call(manager); }), Outcome::returned());
    EXPECT_THAT(platform.journal(), ElementsAreArray(whole({GetParam().request})));
}

TEST_P(EveryAbsorption, IsNotTriedAgain)
{
    gRetryTimes = 3;
    platform.reply(Reply::error(1077949006, "later"));
    EXPECT_EQ(outcomeOf([&] { GetParam().call(manager); }), Outcome::returned());
    EXPECT_EQ(platform.requests().size(), 1u);
    EXPECT_TRUE(platform.lines("usleep").empty());
}

const int ALREADY = 1077936862;
const int ALREADY_TOO = 1077948997;
const int NOT_IN = 1077948996;
const int HOST_ALREADY = 1077937501;
const int ANY = 1077949003;

std::vector<Absorption> pair(Absorption shape, const std::vector<std::pair<int, std::string>>& ends)
{
    std::vector<Absorption> all;
    for (const auto& end : ends) {
        shape.code = end.first;
        shape.warning = end.second + shape.operation;
        all.push_back(shape);
    }
    return all;
}

std::vector<Absorption> additions()
{
    const std::string of5 = "POST /lungroup/associate ID=string:5 ASSOCIATEOBJTYPE=int:";
    auto all = pair({"addLunToLunGroup", "addObjToLunGroup", of5 + "11 ASSOCIATEOBJID=string:7", 0, "",
                     [](M m) { lunGroup(m).addLunToLunGroup("7", "5"); }},
                    {{ALREADY, "the lun was already in the lun group, ignore it. "},
                     {ALREADY_TOO, "the lun was already in the lun group, ignore it. "},
                     {NOT_IN, "addObjToLunGroup exception. "},
                     {ANY, "addObjToLunGroup exception. "},
                     {0, "add lun to lun group failed. "}});
    const auto snapshots =
        pair({"addSnapshotToLunGroup", "addObjToLunGroup", of5 + "27 ASSOCIATEOBJID=string:7", 0, "",
              [](M m) { lunGroup(m).addSnapshotToLunGroup("7", "5"); }},
             {{ALREADY, "the snapshot was already in the lun group, ignore it. "},
              {ALREADY_TOO, "the snapshot was already in the lun group, ignore it. "},
              {ANY, "addObjToLunGroup exception. "},
              {0, "add snapshot to lun group failed. "}});
    all.insert(all.end(), snapshots.begin(), snapshots.end());
    const auto hosts =
        pair({"addHostToHostGroup", "",
              "POST /hostgroup/associate ID=string:5 ASSOCIATEOBJTYPE=int:21 ASSOCIATEOBJID=string:3", 0, "",
              [](M m) { hostGroup(m).addHostToHostGroup("3", "5"); }},
             {{HOST_ALREADY, "the host was already in the host group, ignore it. "},
              {ALREADY, "addHostToHostGroup exception. "},
              {0, "add host to host group failed. "}});
    all.insert(all.end(), hosts.begin(), hosts.end());
    return all;
}

std::vector<Absorption> removals()
{
    const std::string of5 = "DELETE /lungroup/associate?ID=5&ASSOCIATEOBJTYPE=";
    auto all = pair({"removeLunFromLunGroup", "removeObjFromLunGroup", of5 + "11&ASSOCIATEOBJID=7", 0, "",
                     [](M m) { lunGroup(m).removeLunFromLunGroup("7", "5"); }},
                    {{NOT_IN, "the lun was not in the lun group, ignore it. "},
                     {ALREADY, "remove object from lunGroup exception. "},
                     {ANY, "remove object from lunGroup exception. "},
                     {0, "remove lun from lun group failed. "}});
    const auto snapshots =
        pair({"removeSnapshotFromLunGroup", "removeObjFromLunGroup", of5 + "27&ASSOCIATEOBJID=7", 0, "",
              [](M m) { lunGroup(m).removeSnapshotFromLunGroup("7", "5"); }},
             {{NOT_IN, "the snapshot was not in the lun group, ignore it. , ignore it. "},
              {ANY, "remove object from lunGroup exception. "},
              {0, "remove snapshot from lun group failed. "}});
    all.insert(all.end(), snapshots.begin(), snapshots.end());
    const auto hosts = pair(
        {"removeHostFromHostGroup", "", "DELETE /host/associate?ID=5&ASSOCIATEOBJTYPE=21&ASSOCIATEOBJID=3", 0,
         "", [](M m) { hostGroup(m).removeHostFromHostGroup("3", "5"); }},
        {{ANY, "remove host from host group failed. "}, {0, "remove host from host group failed. "}});
    all.insert(all.end(), hosts.begin(), hosts.end());
    return all;
}

std::string absorptionName(const testing::TestParamInfo<Absorption>& info)
{
    return info.param.operation + "_" + std::to_string(info.param.code);
}

INSTANTIATE_TEST_SUITE_P(Adding, EveryAbsorption, testing::ValuesIn(additions()), absorptionName);
INSTANTIATE_TEST_SUITE_P(Removing, EveryAbsorption, testing::ValuesIn(removals()), absorptionName);

TEST_F(HandlerTest, TheMappingViewWorkersPassTheirFailuresOn)
{
    for (const auto& call : {+[](M m) { mappingView(m).addLunGroupToMappingView("5", "6"); },
                             +[](M m) { mappingView(m).removeHostGroupFromMappingView("5", "6"); }}) {
        platform.reply(Reply::error(ALREADY, "no"));
        EXPECT_EQ(outcomeOf([&] { call(manager); }).code, ALREADY);
    }
    EXPECT_TRUE(platform.lines("warn").empty());
}

} // namespace

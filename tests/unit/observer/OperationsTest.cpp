// Every operation that the headers export reaches an observer, with the objects that its arguments name.

#include "Recorder.h"

#include "observer/BodyObjects.h"
#include "observer/Kinds.h"
#include "observer/Observers.h"
#include "observer/Steps.h"
#include "unit/handlers/HandlerTest.h"
#include "unit/host/ScannerTest.h"

#include <tessel/Observer.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sys/wait.h>
#include <tuple>

using namespace handlers;
using M = CDeviceManagerImpl&;

namespace {

const char* const SECRETS[] = {"S3cretPassword", "S3cretToken", "S3cretCookie", "S3cretChap"};

struct Row
{
    const char* name;
    std::function<void(M)> call;
    const char* objects; ///< see objectsOf
    bool isChange = false;
};

template <class Record>
Record record(const std::string& id, const std::string& name, const std::string& parent = "")
{
    Record made;
    made.ID = id;
    made.NAME = name;
    if constexpr (!std::is_same_v<Record, LunGroupMO> && !std::is_same_v<Record, HostGroupMO> &&
                  !std::is_same_v<Record, MappingViewMO>) {
        made.PARENTID = parent;
    }
    return made;
}

IscsiInitiatorMO secretInitiator()
{
    auto initiator = record<IscsiInitiatorMO>("iqn", "", "3");
    initiator.PARENTTYPE = MO_HOST;
    initiator.USECHAP = true;
    initiator.NORMALVERMODE = "2";
    initiator.CHAPNAME = "chap";
    initiator.CHAPPASSWORD = SECRETS[3];
    initiator.CHAPOLDPASSWORD = SECRETS[3];
    initiator.CHAPNAMEINITATORVERTARGET = "target";
    initiator.CHAPPASSWORDINITATORVERTARGET = SECRETS[3];
    initiator.CHAPOLDPASSWORDINITATORVERTARGET = SECRETS[3];
    return initiator;
}

template <class Query, class Call>
std::function<void(M)> listing(Call call)
{
    return [call](M m) {
        Query all;
        call(m, all);
    };
}

std::string seven = "7";

CDiskScannerHandler& scanner(M m)
{
    return static_cast<CDiskScannerHandler&>(*m.getHandler(DISKSCANNER_HANDLER));
}

std::vector<Row> rows()
{
    return {
        {"loginDevice", [](M m) { m.loginDevice("192.0.2.7", 8088, "admin", SECRETS[0], USERTYPE_LOCAL); },
         "", true},
        {"useConnection", [](M m) { m.useConnection("192.0.2.7", 8088, "D1", SECRETS[1], SECRETS[2]); }, "",
         true},
        {"keepAlive", [](M m) { m.keepAlive(); }, ""},
        {"getHandler", [](M m) { m.getHandler(LUN_HANDLER); }, "handler 2"},
        {"createLun",
         [](M m) {
             auto wanted = record<LunMO>("", "db", "0");
             wanted.CAPACITY = 1048576;
             lun(m).createLun(wanted);
         },
         "lun 9 'db', storagepool 0", true},
        {"getLun", [](M m) { lun(m).getLun("7"); }, "lun 7"},
        {"getLunByLunGroup", listing<LunQuery>([](M m, LunQuery& q) { lun(m).getLunByLunGroup("5", q); }),
         "lungroup 5"},
        {"getLunByHost", listing<LunQuery>([](M m, LunQuery& q) { lun(m).getLunByHost("3", q); }), "host 3"},
        {"createLunGroup",
         [](M m) {
             auto wanted = record<LunGroupMO>("", "g");
             lunGroup(m).createLunGroup(wanted);
         },
         "lungroup 9 'g'", true},
        {"deleteLunGroup", [](M m) { lunGroup(m).deleteLunGroup("5"); }, "lungroup 5", true},
        {"getLunGroup", [](M m) { lunGroup(m).getLunGroup("5"); }, "lungroup 5"},
        {"addLunToLunGroup", [](M m) { lunGroup(m).addLunToLunGroup("7", "5"); }, "lun 7, lungroup 5", true},
        {"removeLunFromLunGroup", [](M m) { lunGroup(m).removeLunFromLunGroup("7", "5"); },
         "lun 7, lungroup 5", true},
        {"getLunGroupByLun",
         listing<LunGroupQuery>([](M m, LunGroupQuery& q) { lunGroup(m).getLunGroupByLun("7", q); }),
         "lun 7"},
        {"getLunGroupByMappingView", [](M m) { lunGroup(m).getLunGroupByMappingView("4"); }, "mappingview 4"},
        {"addSnapshotToLunGroup", [](M m) { lunGroup(m).addSnapshotToLunGroup("7", "5"); },
         "snapshot 7, lungroup 5", true},
        {"removeSnapshotFromLunGroup", [](M m) { lunGroup(m).removeSnapshotFromLunGroup("7", "5"); },
         "snapshot 7, lungroup 5", true},
        {"getLunGroupBySnapshot",
         listing<LunGroupQuery>([](M m, LunGroupQuery& q) { lunGroup(m).getLunGroupBySnapshot("7", q); }),
         "snapshot 7"},
        {"getObjNOFromLunGroup",
         [](M m) {
             for (int i = 0; i < 2; ++i) {
                 RecordingPlatform::get().reply(Reply::object(R"({"COUNT":"1"})"));
             }
             lunGroup(m).getObjNOFromLunGroup("5");
         },
         "lungroup 5"},
        {"getSnapshot", [](M m) { snapshot(m).getSnapshot("7"); }, "snapshot 7"},
        {"getSnapshotByLunGroup",
         listing<SnapshotQuery>([](M m, SnapshotQuery& q) { snapshot(m).getSnapshotByLunGroup("5", q); }),
         "lungroup 5"},
        {"getSnapshotByHost",
         listing<SnapshotQuery>([](M m, SnapshotQuery& q) { snapshot(m).getSnapshotByHost("3", q); }),
         "host 3"},
        {"getSnapshotByCondition", listing<SnapshotQuery>([](M m, SnapshotQuery& q) {
             snapshot(m).getSnapshotByCondition("5", MO_LUNGROUP, q, "application");
         }),
         "lungroup 5"},
        {"createHost",
         [](M m) {
             auto wanted = record<HostMO>("", "h");
             host(m).createHost(wanted);
         },
         "host 9 'h'", true},
        {"getHost", [](M m) { host(m).getHost("3"); }, "host 3"},
        {"createHostGroup",
         [](M m) {
             auto wanted = record<HostGroupMO>("", "hg");
             hostGroup(m).createHostGroup(wanted);
         },
         "hostgroup 9 'hg'", true},
        {"deleteHostGroup", [](M m) { hostGroup(m).deleteHostGroup("6"); }, "hostgroup 6", true},
        {"getHostGroup", [](M m) { hostGroup(m).getHostGroup("6"); }, "hostgroup 6"},
        {"addHostToHostGroup", [](M m) { hostGroup(m).addHostToHostGroup("3", "6"); }, "host 3, hostgroup 6",
         true},
        {"getHostGroupByHost",
         listing<HostGroupQuery>([](M m, HostGroupQuery& q) { hostGroup(m).getHostGroupByHost("3", q); }),
         "host 3"},
        {"getHostGroupByMappingView", [](M m) { hostGroup(m).getHostGroupByMappingView("4"); },
         "mappingview 4"},
        {"removeHostFromHostGroup", [](M m) { hostGroup(m).removeHostFromHostGroup("3", "6"); },
         "host 3, hostgroup 6", true},
        {"createIscsiInitiator",
         [](M m) {
             auto wanted = secretInitiator();
             iscsi(m).createIscsiInitiator(wanted);
         },
         "host 3; iqn", true},
        {"deleteIscsiInitiator", [](M m) { iscsi(m).deleteIscsiInitiator("iqn"); }, "; iqn", true},
        {"modifyIscsiInitiator",
         [](M m) {
             auto wanted = secretInitiator();
             RecordingPlatform::get().reply(Reply::object(
                 R"({"ID":"iqn","USECHAP":"true","NORMALVERMODE":"2","DISCOVERYVERMODE":"0"})"));
             iscsi(m).modifyIscsiInitiator(wanted);
         },
         "host 3; iqn", true},
        {"getIscsiInitiator", [](M m) { iscsi(m).getIscsiInitiator("iqn"); }, "; iqn"},
        {"addIscsiInitiatorToHost", [](M m) { iscsi(m).addIscsiInitiatorToHost("iqn", "3"); }, "host 3; iqn",
         true},
        {"removeIscsiInitiatorFromHost", [](M m) { iscsi(m).removeIscsiInitiatorFromHost("iqn"); }, "; iqn",
         true},
        {"createFCInitiator",
         [](M m) {
             auto wanted = record<FCInitiatorMO>("21000024ff", "", "3");
             fc(m).createFCInitiator(wanted);
         },
         "host 3; 21000024ff", true},
        {"deleteFCInitiator", [](M m) { fc(m).deleteFCInitiator("21000024ff"); }, "; 21000024ff", true},
        {"getFCInitiator", [](M m) { fc(m).getFCInitiator("21000024ff"); }, "; 21000024ff"},
        {"addFCInitiatorToHost", [](M m) { fc(m).addFCInitiatorToHost("21000024ff", "3"); },
         "host 3; 21000024ff", true},
        {"removeFCInitiatorFromHost", [](M m) { fc(m).removeFCInitiatorFromHost("21000024ff"); },
         "; 21000024ff", true},
        {"createMappingView",
         [](M m) {
             auto wanted = record<MappingViewMO>("", "v");
             mappingView(m).createMappingView(wanted);
         },
         "mappingview 9 'v'", true},
        {"deleteMappingView", [](M m) { mappingView(m).deleteMappingView("4"); }, "mappingview 4", true},
        {"getMappingView", [](M m) { mappingView(m).getMappingView("4"); }, "mappingview 4"},
        {"addLunGroupToMappingView", [](M m) { mappingView(m).addLunGroupToMappingView("5", "4"); },
         "lungroup 5, mappingview 4", true},
        {"removeLunGroupFromMappingView", [](M m) { mappingView(m).removeLunGroupFromMappingView("5", "4"); },
         "lungroup 5, mappingview 4", true},
        {"addHostGroupToMappingView", [](M m) { mappingView(m).addHostGroupToMappingView("6", "4"); },
         "hostgroup 6, mappingview 4", true},
        {"removeHostGroupFromMappingView",
         [](M m) { mappingView(m).removeHostGroupFromMappingView("6", "4"); }, "hostgroup 6, mappingview 4",
         true},
        {"getMappingViewByLunGroup", listing<MappingViewQuery>([](M m, MappingViewQuery& q) {
             mappingView(m).getMappingViewByLunGroup("5", q);
         }),
         "lungroup 5"},
        {"getMappingViewByHostGroup", listing<MappingViewQuery>([](M m, MappingViewQuery& q) {
             mappingView(m).getMappingViewByHostGroup("6", q);
         }),
         "hostgroup 6"},
        {"getFCPort", [](M m) { fcPort(m).getFCPort("1"); }, "fcport 1"},
        {"getFCPortBatch", listing<FCPortQuery>([](M m, FCPortQuery& q) { fcPort(m).getFCPortBatch(q); }),
         ""},
        {"getFCoEPort", [](M m) { fcoePort(m).getFCoEPort("1"); }, "fcoeport 1"},
        {"getFCoEPortBatch",
         listing<FCoEPortQuery>([](M m, FCoEPortQuery& q) { fcoePort(m).getFCoEPortBatch(q); }), ""},
        {"getETHPort", [](M m) { ethPort(m).getETHPort("1"); }, "ethport 1"},
        {"getETHPortBatch",
         listing<ETHPortQuery>([](M m, ETHPortQuery& q) { ethPort(m).getETHPortBatch(q); }), ""},
        {"attachLunToHost", [](M m) { attach(m).attachLunToHost("7", "iqn", "192.0.2.1"); },
         "lun 7, host 9; iqn", true},
        {"detachLunFromHost", [](M m) { attach(m).detachLunFromHost("7", "iqn"); }, "lun 7, host 3; iqn"},
        {"attachSnapshotToHost", [](M m) { attach(m).attachSnapshotToHost("7", "iqn", "192.0.2.1"); },
         "snapshot 7, host 9; iqn", true},
        {"detachSnapshotFromHost", [](M m) { attach(m).detachSnapshotFromHost("7", "iqn"); },
         "snapshot 7, host 3; iqn"},
        {"scanLunAfterAttach", [](M m) { scanner(m).scanLunAfterAttach(seven); }, "lun 7", true},
        {"scanSnapshotAfterAttach", [](M m) { scanner(m).scanSnapshotAfterAttach(seven); }, "snapshot 7",
         true},
        {"scanLunBeforeDetach", [](M m) { scanner(m).scanLunBeforeDetach(seven); }, "lun 7"},
        {"scanSnapshotBeforeDetach", [](M m) { scanner(m).scanSnapshotBeforeDetach(seven); }, "snapshot 7"},
        {"logoutDevice", [](M m) { m.logoutDevice(); }, "", true},
    };
}

/** The operations of the exported interfaces, as their headers declare them. */
std::set<std::string> declaredOperations()
{
    std::set<std::string> names;
    const std::regex pure(R"(virtual [^;]*?(\w+)\([^;]*\) = 0;)");
    for (const auto& header : std::filesystem::directory_iterator(EXPORTED_HEADERS)) {
        std::ifstream file(header.is_regular_file() ? header.path().string() : "/dev/null");
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        for (std::sregex_iterator found(text.begin(), text.end(), pure), end; found != end; ++found) {
            names.insert((*found)[1]);
        }
    }
    return names;
}

/** Answers as an array does on which each object asked for is there, with an initiator that has no host. */
Reply likeAnArray(const SentRequest& request, bool withHost)
{
    const auto has = [&](const char* text) { return request.path.find(text) != std::string::npos; };
    if (has("xxxx/sessions")) {
        Reply reply = Reply::object(std::string(R"({"deviceid":"D1","iBaseToken":")") + SECRETS[1] + R"("})");
        reply.headers = {std::string("Set-Cookie: ") + SECRETS[2] + "; path=/"};
        return reply;
    }
    if (request.mode == REST_POST) {
        return Reply::object(R"({"ID":"9"})");
    }
    if (has("associate")) {
        return Reply::ok();
    }
    if (has("/iscsi_initiator/")) {
        return Reply::object(withHost ? R"({"ID":"iqn","PARENTID":"3"})" : R"({"ID":"iqn"})");
    }
    for (const char* const id : {"/lun/7", "/SNAPSHOT/7"}) {
        if (has(id)) {
            return Reply::object(R"({"ID":"7","WWN":")" + std::string(WWN) + R"("})");
        }
    }
    return Reply::object(R"({"ID":")" + request.path.substr(request.path.rfind('/') + 1) + R"("})");
}

class Observed : public ScannerTest
{
protected:
    Observed()
    {
        platform.replyWith([this](const SentRequest& request) { return likeAnArray(request, withHost); });
        manager.loginDevice("192.0.2.7", 8088, "admin", SECRETS[0], USERTYPE_LOCAL);
        for (int type = LUN_HANDLER; type <= FCOEPORT_HANDLER; ++type) {
            manager.getHandler(static_cast<HANDLERTYPE>(type));
        }
    }

    /** All that one call of an operation tells. */
    std::shared_ptr<Recorder> told(const Row& row)
    {
        withHost = std::string(row.name).find("detach") == 0;
        const Recording recording;
        try {
            row.call(manager);
        } catch (const OvraAPIException&) {
        }
        return recording.recorder;
    }

    bool withHost = false;
};

void expectNoSecret(const OperationEvent& event)
{
    std::string all = event.operation + event.within + event.array + event.user + event.initiator +
                      event.what + event.device + objectsOf(event);
    for (const char* const secret : SECRETS) {
        EXPECT_EQ(all.find(secret), std::string::npos) << event.operation << ": " << all;
    }
}

} // namespace

TEST_F(Observed, TellsOfEveryOperationThatTheHeadersDeclare)
{
    std::set<std::string> told;
    for (const Row& row : rows()) {
        const auto calls = this->told(row)->calls(row.name);
        ASSERT_EQ(calls.size(), 1U) << row.name;
        told.insert(row.name);
        const OperationEvent& event = calls.front();
        EXPECT_EQ(objectsOf(event), row.objects) << row.name;
        EXPECT_EQ(event.isChange, row.isChange) << row.name;
        EXPECT_EQ(event.array, "192.0.2.7:8088") << row.name;
        EXPECT_EQ(event.process, getpid()) << row.name;
        EXPECT_EQ(event.thread, gettid()) << row.name;
        EXPECT_GE(event.seconds, 0) << row.name;
    }
    EXPECT_EQ(told, declaredOperations());
    EXPECT_EQ(told.size(), 67U);
}

TEST_F(Observed, TellsWhoHasLoggedInAndNotWhoHasAdoptedASession)
{
    const Row getLun{"getLun", [](M m) { lun(m).getLun("7"); }, ""};
    EXPECT_EQ(told(getLun)->calls("getLun").at(0).user, "admin");
    manager.useConnection("192.0.2.8", 443, "D1", "T", "C");
    EXPECT_EQ(told(getLun)->calls("getLun").at(0).user, "");
    EXPECT_EQ(told(getLun)->calls("getLun").at(0).array, "192.0.2.8:443");
    const Row login{"loginDevice",
                    [](M m) { m.loginDevice("192.0.2.9", 8088, "operator", "x", USERTYPE_LOCAL); }, ""};
    EXPECT_EQ(told(login)->calls("loginDevice").at(0).user, "operator");
}

TEST(ObservedSessions, GoWithTheirDeviceManager)
{
    CDeviceManager* const gone = CDeviceManager::getInstance(0, 0);
    gone->useConnection("192.0.2.8", 443, "D1", "T", "C");
    EXPECT_EQ(sessions::of(gone).array, "192.0.2.8:443");
    CDeviceManager::releaseInstance(gone);
    EXPECT_EQ(sessions::of(gone).array, "") << "another one may come to stand there";
}

TEST(ObservedSessions, HaveTheAddressAsAUrlHasIt)
{
    EXPECT_EQ(sessions::named("192.0.2.7", 8088, "").array, "192.0.2.7:8088");
    EXPECT_EQ(sessions::named("2001:db8::7", 8088, "").array, "[2001:db8::7]:8088");
    EXPECT_EQ(sessions::named("[2001:db8::7]", 8088, "").array, "[2001:db8::7]:8088");
}

TEST_F(Observed, AnObserverMayLookAtNothing)
{
    const auto observer = std::make_shared<Observer>();
    addObserver(observer);
    rows().front().call(manager);
    tellStep(HostEvent::SCANNED, "/dev/sdc");
    removeObserver(observer);
}

TEST(ObservedBodies, NameAnObjectByTheMembersThatAreMadeForIt)
{
    BodyObjects body;
    body.sends("TYPE", 11UL);
    body.sends("ID", "7");
    body.sends("NAME", "data");
    body.sends("ID", 8UL); // each is a number or a text
    body.sends("TYPE", "27");
    body.sends("CAPACITY", 9UL);
    body.sends("DESCRIPTION", "of the customer");
    const BodyObject& own = body.own();
    EXPECT_EQ(std::make_tuple(own.type, own.id, own.name), std::make_tuple(11UL, "7", "data"));
    EXPECT_STREQ(kinds::of(own.type), "lun");
    EXPECT_STREQ(kinds::of(4711), "object");
}

TEST(ObservedCalls, ThatAreLeftWithoutAResultAreNotTheThreadsAnyMore)
{
    const Recording recording;
    {
        const Observation outer("outer", nullptr);
        {
            const Observation inner("inner", nullptr);
            EXPECT_EQ(Observation::ofThread(), &inner);
        }
        EXPECT_EQ(Observation::ofThread(), &outer);
    }
    EXPECT_EQ(Observation::ofThread(), nullptr);
    EXPECT_TRUE(recording->operations.empty());
}

TEST(ObservedCalls, NameEachObjectOnceWhateverElseHasItsId)
{
    const Recording recording;
    Observation job("job", nullptr, Observation::Level::JOB);
    Observation call("call", nullptr);
    for (const char* const kind : {kinds::LUN, kinds::HOST, kinds::LUN}) {
        call.names(kind, "7");
        call.names(kind, "8");
    }
    Observation::jobsName(kinds::HOST, "3");
    call.ended(0);
    job.ended(0);
    ASSERT_EQ(recording->operations.size(), 2U);
    EXPECT_EQ(objectsOf(recording->operations[0]), "lun 7, lun 8, host 7, host 8");
    EXPECT_EQ(objectsOf(recording->operations[1]), "host 3");
}

TEST(ObservedSteps, AreAChangeOfTheirCallWhereTheyChangeTheHost)
{
    for (const auto& [step, isChange] :
         {std::pair(HostEvent::SCANNED, true), std::pair(HostEvent::REMOVED, true),
          std::pair(HostEvent::RENEWED, true), std::pair(HostEvent::FOUND, false)}) {
        const Recording recording;
        Observation call("call", nullptr);
        tellStep(step, "/dev/sdc");
        call.ended(0);
        EXPECT_EQ(recording->calls("call").at(0).isChange, isChange) << nameOf(step);
    }
}

TEST(ObservedSteps, ThatWaitInAParentAreNotToldByItsChild)
{
    const Recording recording;
    beginUntold();
    tellStep(HostEvent::SCANNED, "/dev/sdc");
    tellStep(HostEvent::FOUND, "/dev/sdd");
    const pid_t child = fork();
    if (child == 0) {
        tellStep(HostEvent::REMOVED, "/dev/sde"); // its own
        endUntold();
        _exit(recording->stepLines() == std::vector<std::string>{"removed /dev/sde"} ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(recording->steps.empty());
    endUntold();
    EXPECT_EQ(recording->stepLines().size(), 2U);
}

TEST(ObservedSteps, OutsideOfAnyCallAreToldAsThisThreadsOwn)
{
    const Recording recording;
    tellStep(HostEvent::SCANNED, "/dev/sdc");
    const OperationEvent& call = recording->steps.at(0).operation;
    EXPECT_EQ(call.operation, "");
    EXPECT_EQ(call.process, getpid());
    EXPECT_EQ(call.thread, gettid());
    EXPECT_NE(call.start, std::chrono::system_clock::time_point());
}

TEST_F(Observed, TellsNoSecretOfAnyOperationNorOfItsFailureWhateverTheArraySays)
{
    for (const Row& row : rows()) {
        const std::shared_ptr<Recorder> recorder = told(row);
        std::for_each(recorder->operations.begin(), recorder->operations.end(), expectNoSecret);
    }
    std::string all;
    for (const char* const secret : SECRETS) {
        all += secret;
    }
    platform.replyWith([&](const SentRequest&) { return Reply::error(1077939726, all); });
    for (const Row& row : rows()) {
        const std::shared_ptr<Recorder> recorder = told(row);
        std::for_each(recorder->operations.begin(), recorder->operations.end(), expectNoSecret);
    }
}

TEST_F(Observed, TellsTheResultAsTheOperationEndedIt)
{
    const auto resultOf = [&](const char* lunId) {
        const auto event = told({"getLun", [=](M m) { lun(m).getLun(lunId); }, ""})->calls("getLun").at(0);
        return std::to_string(event.code) + (event.isDone ? " done " : " not done ") + event.what;
    };
    EXPECT_EQ(resultOf("7"), "0 done ");
    EXPECT_EQ(resultOf(""), "1 not done Exception:lunID is empty! getLun");
    platform.reply(Reply::noAnswer(28));
    EXPECT_EQ(resultOf("7"), "28 not done Exception:url error or internet error getLun");
    platform.reply(Reply::error(1077936859, "gone"));
    EXPECT_EQ(resultOf("7"), "1077936859 not done the array refused it, error code 1077936859");
}

TEST_F(Observed, TellsOfAFailureThatTheOperationKeepsToItself)
{
    const Row add{"addLunToLunGroup", [](M m) { lunGroup(m).addLunToLunGroup("7", "5"); }, ""};
    platform.reply(Reply::error(1077936862)); // it is a member already
    EXPECT_TRUE(told(add)->calls("addLunToLunGroup").at(0).isDone);
    platform.reply(Reply::error(1077948997 + 7));
    const OperationEvent refused = told(add)->calls("addLunToLunGroup").at(0);
    EXPECT_FALSE(refused.isDone);
    EXPECT_EQ(refused.code, 1077949004);
    EXPECT_EQ(refused.what, "the array refused it, error code 1077949004");
    platform.reply(Reply::noAnswer(28));
    EXPECT_EQ(told(add)->calls("addLunToLunGroup").at(0).code, 28);

    const Row attaching{"attachLunToHost", [](M m) { attach(m).attachLunToHost("7", "iqn", ""); }, ""};
    platform.replyWith([&](const SentRequest& request) {
        return request.path == "/mappingview/create_associate" ? Reply::error(7)
                                                               : likeAnArray(request, false);
    });
    const OperationEvent unseen = told(attaching)->calls("attachLunToHost").at(0);
    EXPECT_FALSE(unseen.isDone) << "the view binds nothing";
    EXPECT_EQ(unseen.code, 7);
}

TEST_F(Observed, TellsOfTheStepsOfACallBeforeTheCallAndWithItsName)
{
    const auto recorder = told({"", [](M m) { lunGroup(m).addLunToLunGroup("7", "5"); }, ""});
    ASSERT_GE(recorder->operations.size(), 2U);
    EXPECT_EQ(recorder->operations.back().operation, "addLunToLunGroup");
    EXPECT_EQ(recorder->operations.back().within, "");
    const OperationEvent& step = recorder->operations[recorder->operations.size() - 2];
    EXPECT_EQ(step.within, "addLunToLunGroup");
    EXPECT_EQ(objectsOf(step), "lun 7") << "by the body that it sends";
}

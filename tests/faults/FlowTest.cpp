// Sessions, attaches and detaches, each of their requests in turn under each fault: whatever the flow makes
// of it, only the two classes come out, every operation that begins has its record, nothing is sent twice,
// and the same call works next.

#include "faults/Matrix.h"

#include "faults/ShortTimeLimit.h"

#include <ovra/rest/RestSettings.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <set>

namespace {

using tessel_test::Behaviour;
using tessel_test::MisbehavingServer;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;

constexpr double LONGEST_S = 20;

/** What an application does in one go; false: it was told that it failed. */
struct Flow
{
    std::string name;
    size_t requests; ///< that it sends where none fails
    std::function<bool(CDeviceManagerImpl& manager, unsigned short port)> run;
};

/** A flow of which one request meets the faults. */
struct FaultyRequest
{
    Flow flow;
    size_t at; ///< from 1
};

bool login(CDeviceManagerImpl& manager, unsigned short port)
{
    return manager.loginDevice("127.0.0.1", port, "admin", "secret", USERTYPE_LOCAL);
}

/** With a session that was opened elsewhere. */
template <class Call>
Flow adopted(const std::string& name, size_t requests, Call call)
{
    return {name, requests, [call](CDeviceManagerImpl& manager, unsigned short port) {
                manager.useConnection("127.0.0.1", port, "D1", "T1", "session=S1");
                return call(manager);
            }};
}

std::string nameOf(const FaultyRequest& request)
{
    return request.flow.name + "_" + std::to_string(request.at);
}

void PrintTo(const FaultyRequest& request, std::ostream* out)
{
    *out << nameOf(request);
}

std::vector<Flow> flows()
{
    using handlers::attach;
    return {
        {"login", 1, login},
        {"loginAndLogout", 2,
         [](CDeviceManagerImpl& manager, unsigned short port) {
             const bool isOpen = login(manager, port);
             return manager.logoutDevice() && isOpen;
         }},
        adopted("keepAlive", 1, [](CDeviceManagerImpl& manager) { return manager.keepAlive(); }),
        adopted("attachLunToHost", 14,
                [](CDeviceManagerImpl& manager) {
                    return attach(manager).attachLunToHost("7", "iqn", "192.0.2.9") == 0;
                }),
        adopted("attachSnapshotToHost", 14,
                [](CDeviceManagerImpl& manager) {
                    return attach(manager).attachSnapshotToHost("7", "iqn", "192.0.2.9") == 0;
                }),
        adopted(
            "detachLunFromHost", 10,
            [](CDeviceManagerImpl& manager) { return attach(manager).detachLunFromHost("7", "iqn") == 0; }),
        adopted("detachSnapshotFromHost", 10,
                [](CDeviceManagerImpl& manager) {
                    return attach(manager).detachSnapshotFromHost("7", "iqn") == 0;
                }),
        adopted("detachLunFromEveryHost", 10,
                [](CDeviceManagerImpl& manager) { return attach(manager).detachLunFromHost("7", "0") == 0; }),
    };
}

std::vector<FaultyRequest> allRequests()
{
    std::vector<FaultyRequest> all;
    for (const Flow& flow : flows()) {
        for (size_t at = 1; at <= flow.requests; ++at) {
            all.push_back({flow, at});
        }
    }
    return all;
}

/** What the array has, by how a request begins; the longest beginning counts. */
const std::map<std::string, std::string> ANSWERS = {
    {"POST /deviceManager/rest/xxxx/sessions", R"({"deviceid":"D1","iBaseToken":"T1"})"},
    {"GET /lun/7", R"({"ID":"7"})"},
    {"GET /SNAPSHOT/7", R"({"ID":"7"})"},
    {"GET /iscsi_initiator/iqn", R"({"ID":"iqn","PARENTID":"h1"})"},
    {"GET /host/h1", R"({"ID":"h1"})"},
    {"POST /lungroup", R"({"ID":"lg1"})"},
    {"GET /lungroup/lg1", R"({"ID":"lg1","ISADD2MAPPINGVIEW":"true"})"},
    {"GET /lungroup/associate", R"([{"ID":"lg1"}])"},
    {"POST /hostgroup", R"({"ID":"hg1"})"},
    {"GET /hostgroup/hg1", R"({"ID":"hg1","ISADD2MAPPINGVIEW":"true"})"},
    {"GET /hostgroup/associate", R"([{"ID":"hg1"}])"},
    {"POST /mappingview", R"({"ID":"v1"})"},
    {"GET /mappingview/v1", R"({"ID":"v1"})"},
    {"GET /mappingview/associate", R"([{"ID":"v1"}])"},
    {"GET /lun/count", R"({"COUNT":"0"})"},
    {"GET /snapshot/count", R"({"COUNT":"0"})"},
};

std::string dataFor(const std::string& request)
{
    std::string data;
    for (const auto& [beginning, answer] : ANSWERS) { // in order, so that longer beginnings come later
        data = request.compare(0, beginning.size(), beginning) == 0 ? answer : data;
    }
    return data;
}

std::string allOf(const Lines& lines)
{
    std::string all;
    for (const std::string& line : lines) {
        all += line + "\n";
    }
    return all;
}

/** The different kinds of error object are the single operations' matter. */
bool isTried(const Fault& fault)
{
    const auto is = [&](const std::string& kind) { return fault.name.compare(0, kind.size(), kind) == 0; };
    const bool isOfError =
        is("Code") || is("Description") || (is("Status") && !is("Status401") && !is("Status503"));
    return !fault.isHeavy && fault.port == 0 && !isOfError;
}

class FlowUnderFaults : public testing::TestWithParam<FaultyRequest>
{
protected:
    FlowUnderFaults()
    {
        RestSettings settings;
        settings.caFile = TestCertificates::instance().caFile();
        RestSetSettings(settings);
        server.setHandler([this](const ReceivedRequest& request) { return answerTo(request); });
    }

    Behaviour answerTo(const ReceivedRequest& request)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        std::string line = request.method() + " " + request.target();
        const size_t base = line.find("/deviceManager/rest/D1");
        line.erase(std::min(base, line.size()), base == std::string::npos ? 0 : 22);
        arrived.push_back(line + " " + request.body);
        const std::string data = dataFor(line);
        const bool isFaulty = fault != nullptr &&
                              (isLasting ? arrived.size() >= GetParam().at : arrived.size() == GetParam().at);
        return isFaulty ? fault->behaviour(data)
                        : Behaviour::success(data, "Set-Cookie: session=S1; path=/\r\n");
    }

    /** One go; whether it was told to have worked. */
    bool run()
    {
        {
            const std::lock_guard<std::mutex> guard(mutex);
            arrived.clear();
        }
        RecordingPlatform& platform = RecordingPlatform::get();
        platform.reset();
        bool isTrue = false;
        const Outcome outcome = outcomeOf([&] { isTrue = GetParam().flow.run(manager, server.port()); });
        expectARecordOfEach(platform.journal());
        return outcome == Outcome::returned() && isTrue;
    }

    /** Of every operation that began. */
    static void expectARecordOfEach(const Lines& journal)
    {
        size_t open = 0; ///< that have no record yet
        for (size_t i = 0; i < journal.size(); ++i) {
            const std::string before = i == 0 ? "" : journal[i - 1];
            const bool isClosing =
                before.compare(0, 7, "record ") == 0 && closeAsTheyEnter().count(journal[i]) != 0;
            if (isBeginning(journal[i]) && !isClosing) {
                ++open;
            }
            // One that the lines lay down beside the operation's own.
            const bool isOfAnArgument = before.compare(0, 22, "error: OperationSystem") == 0;
            if (journal[i].compare(0, 6, "record") == 0 && !isOfAnArgument) {
                ASSERT_GT(open, 0U) << allOf(journal);
                --open;
            }
        }
        EXPECT_EQ(open, 0U) << allOf(journal);
    }

    static bool isBeginning(const std::string& line)
    {
        static const Lines BEGINNINGS = {"info: enter ", "info: Login device start",
                                         "info: Logout device start", "info: Use existed connection start"};
        return std::any_of(BEGINNINGS.begin(), BEGINNINGS.end(), [&](const std::string& beginning) {
            return line.compare(0, beginning.size(), beginning) == 0;
        });
    }

    /** The lines of operations that end with what they begin with. */
    static const std::set<std::string>& closeAsTheyEnter()
    {
        static const std::set<std::string> lines = [] {
            std::set<std::string> all;
            for (const Exchange& exchange : allExchanges()) {
                for (const Exchange::FrameNames& frame : exchange.frames) {
                    if (frame.close == "enter ") {
                        all.insert(journal::enter(frame.logged));
                    }
                }
            }
            return all;
        }();
        return lines;
    }

    void expectNothingTwice()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        for (const std::string& line : arrived) {
            const auto times = std::count(arrived.begin(), arrived.end(), line);
            EXPECT_TRUE(line.compare(0, 4, "GET ") == 0 || times == 1) << line << ": " << times;
        }
    }

    std::mutex mutex;
    std::vector<std::string> arrived;
    const Fault* fault = nullptr;
    bool isLasting = false;
    MisbehavingServer server;
    CDeviceManagerImpl manager;
};

TEST_P(FlowUnderFaults, EndsSoundlyWhicheverRequestFailsAndGoesOn)
{
    const auto& [flow, at] = GetParam();
    EXPECT_TRUE(run());
    ASSERT_EQ(arrived.size(), flow.requests);
    expectNothingTwice();
    size_t cases = 0;
    for (const Fault& one : faults()) {
        for (const bool lasting : {false, true}) {
            if (!isTried(one) || (one.isSlow && !lasting)) {
                continue;
            }
            SCOPED_TRACE(one.name + (lasting ? ", lasting" : ", once"));
            ++cases;
            fault = &one;
            isLasting = lasting;
            {
                const ShortTimeLimit limit(one.isSlow);
                const auto start = std::chrono::steady_clock::now();
                const bool hasWorked = run();
                const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
                EXPECT_LT(took.count(), LONGEST_S);
                if (at == 1 && lasting && one.ending == Fault::NO_ANSWER) {
                    EXPECT_FALSE(hasWorked);
                }
            }
            expectNothingTwice();
            fault = nullptr;
            if (one.isClosedAfterwards || one.isSlow) { // what was given up might be read later
                server.closeConnections();
            }
            EXPECT_TRUE(run()) << "the next one";
            EXPECT_EQ(arrived.size(), flow.requests);
        }
    }
    std::cout << nameOf(GetParam()) << ": " << cases << " cases\n";
}

INSTANTIATE_TEST_SUITE_P(Of, FlowUnderFaults, testing::ValuesIn(allRequests()),
                         [](const auto& request) { return nameOf(request.param); });

} // namespace

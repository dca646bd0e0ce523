// What an operation costs beside the answer of the server: the same GET through the SDK, through the REST
// library alone, on a new connection each time, and the logs alone. The server answers from memory on
// loopback.

#include "LunOfTheServer.h"
#include "MisbehavingServer.h"

#include <tessel/Tessel.h>

#include <benchmark/benchmark.h>
#include <ovra/log/LogAPI.h>
#include <ovra/rest/RestRequest.h>
#include <ovra/rest/RestSettings.h>

#include <chrono>
#include <memory>

using tessel_test::Behaviour;
using tessel_test::MisbehavingServer;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;

namespace {

Behaviour likeAnArray(const ReceivedRequest& request)
{
    return request.method() == "POST"
               ? Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})", "Set-Cookie: s=1; path=/\r\n")
               : Behaviour::success(bench::LUN);
}

/** One server and one session for all benchmarks. */
struct World
{
    World()
    {
        RestSettings settings;
        settings.caFile = TestCertificates::instance().caFile();
        RestSetSettings(settings);
        server.setHandler(likeAnArray);
        array->loginDevice("127.0.0.1", server.port(), "admin", "secret", USERTYPE_LOCAL);
        luns = static_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
    }
    ~World() { CDeviceManager::releaseInstance(array); }

    int requestAlone()
    {
        RestRequest request;
        request.SetServerUrl(server.url());
        RestResponse response;
        std::vector<std::string> headers;
        return request.SendRequest("/deviceManager/rest/D1/lun/7", REST_GET, response, headers, true);
    }

    MisbehavingServer server;
    CDeviceManager* array = CDeviceManager::getInstance(0, 0);
    CLunHandler* luns = nullptr;
};

World& world()
{
    static World instance;
    return instance;
}

void getLun(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(world().luns->getLun("7"));
    }
}
BENCHMARK(getLun)->UseRealTime();

/** Looks at every event, as one that counts does. */
struct Counter : ovra::tessel::Observer
{
    void operationEnded(const ovra::tessel::OperationEvent& event) override
    {
        seconds += event.seconds;
        ++calls;
    }
    double seconds = 0;
    unsigned long calls = 0;
};

void getLunObserved(benchmark::State& state)
{
    world();
    const auto counter = std::make_shared<Counter>();
    ovra::tessel::addObserver(counter);
    for (auto _ : state) {
        benchmark::DoNotOptimize(world().luns->getLun("7"));
    }
    ovra::tessel::removeObserver(counter);
    if (counter->calls == 0) {
        state.SkipWithError("the observer was told of nothing");
    }
}
BENCHMARK(getLunObserved)->UseRealTime();

/** A call with an observer and one without in turn, so that both meet the same load: the counters say what
 * one costs. */
void observerAlone(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    world();
    const auto counter = std::make_shared<Counter>();
    double with = 0;
    double without = 0;
    for (auto _ : state) {
        const auto begin = Clock::now();
        benchmark::DoNotOptimize(world().luns->getLun("7"));
        const auto middle = Clock::now();
        ovra::tessel::addObserver(counter);
        const auto begin2 = Clock::now();
        benchmark::DoNotOptimize(world().luns->getLun("7"));
        const auto end = Clock::now();
        ovra::tessel::removeObserver(counter);
        without += std::chrono::duration<double>(middle - begin).count();
        with += std::chrono::duration<double>(end - begin2).count();
    }
    state.counters["ratio"] = with / without;
}
BENCHMARK(observerAlone)->UseRealTime();

void restLibraryAlone(benchmark::State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(world().requestAlone());
    }
}
BENCHMARK(restLibraryAlone)->UseRealTime();

void newConnectionEachTime(benchmark::State& state)
{
    const RestSettings settings = RestGetSettings();
    for (auto _ : state) {
        RestSetSettings(settings); // drops the idle connections
        benchmark::DoNotOptimize(world().requestAlone());
    }
}
BENCHMARK(newConnectionEachTime)->UseRealTime();

void oneLogLine(benchmark::State& state)
{
    world();
    for (auto _ : state) {
        Log_Run_Info("Ovra-Tessel-API-linux-Cpp", "enter getLun successfully!");
    }
}
BENCHMARK(oneLogLine)->UseRealTime();

} // namespace

BENCHMARK_MAIN();

// One getLun beside the same request in libcurl alone.

#include "Rounds.h"
#include "Servers.h"

namespace {

std::function<void()> calls(bench::Way& way, unsigned times)
{
    return [&way, times] {
        for (unsigned i = 0; i < times; ++i) {
            way.call();
        }
    };
}

} // namespace

void bench::callRows(bool isShort)
{
    const unsigned rounds = isShort ? 6 : 40;
    {
        const Servers server;
        const auto json = way("json", server[0]);
        const auto least = way("least", server[0]);
        const auto sdk = way("sdk", server[0]);
        const unsigned times = isShort ? 200 : 500;
        for (const auto* one : {&json, &least, &sdk}) {
            calls(**one, times)();
        }
        const Rounds beside(rounds, calls(*sdk, times), calls(*json, times));
        tellRow("getLun, 0 ms, wall against libcurl and JsonCpp", beside.wall(), 1.15);
        tellRow("getLun, 0 ms, CPU against libcurl and JsonCpp", beside.cpu(), 1.25);
        const Rounds ofLeast(rounds, calls(*least, times), calls(*json, times));
        tellRow("the least that is promised, 0 ms, wall against libcurl and JsonCpp", ofLeast.wall(), NO_AIM);
        tellRow("the least that is promised, 0 ms, CPU against libcurl and JsonCpp", ofLeast.cpu(), NO_AIM);
    }
    for (const unsigned milliseconds : {1U, 5U, 20U}) {
        const Servers server(1, milliseconds);
        const auto bare = way("bare", server[0]);
        const auto least = way("least", server[0]);
        const auto sdk = way("sdk", server[0]);
        const unsigned times = (isShort ? 40 : 200) / milliseconds;
        for (const auto* one : {&bare, &least, &sdk}) {
            calls(**one, times)();
        }
        const std::string wall = ", " + std::to_string(milliseconds) + " ms, wall against libcurl";
        tellRow("getLun" + wall, Rounds(rounds, calls(*sdk, times), calls(*bare, times)).wall(), 1.01);
        tellRow("the least that is promised" + wall,
                Rounds(rounds, calls(*least, times), calls(*bare, times)).wall(), NO_AIM);
    }
}

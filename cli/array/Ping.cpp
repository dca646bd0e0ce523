#include "frame/Context.h"
#include "session/Advice.h"

#include <array>
#include <chrono>
#include <cstdio>

namespace tesselctl {
namespace {

/** Seconds with milliseconds that something took. */
template <class Work>
double timed(Work work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
    return took.count() * 1000;
}

struct Step
{
    const char* name;
    double milliseconds;
};

void tellSteps(Context& context, const std::string& array, const std::vector<Step>& steps)
{
    std::string text = "array " + array + "\n";
    Json::Value json(Json::objectValue);
    json["array"] = array;
    for (const auto& step : steps) {
        std::array<char, 64> line{};
        std::snprintf(line.data(), line.size(), "%-11s %8.1f ms\n", step.name, step.milliseconds);
        text += line.data();
        json["milliseconds"][step.name] = step.milliseconds;
    }
    context.printer().result(text, json);
}

Failure refused(const ArrayAddress& array, const std::string& what)
{
    const auto failure = ovra::tessel::lastFailure();
    const std::string advice = transportAdvice(failure, array.text());
    return Failure(!advice.empty() ? advice
                                   : "the array did not accept the " + what + ": " + refusalOf(failure));
}

void ping(Context& context)
{
    std::vector<Step> steps;
    bool alive = false;
    bool closed = false;
    const double opening = timed([&] { context.session(); });
    Session& session = context.session();
    if (!session.isAdopted()) {
        steps.push_back({"login", opening});
    }
    steps.push_back({"keep-alive", timed([&] { alive = session.keepAlive(); })});
    if (!alive) {
        throw refused(session.address(), "keep-alive: the session is over, or the array is busy");
    }
    if (!session.isAdopted()) {
        steps.push_back({"logout", timed([&] { closed = session.close(); })});
        if (!closed) {
            throw refused(session.address(), "logout");
        }
    }
    tellSteps(context, session.address().text(), steps);
}

} // namespace

Commands pingCommands()
{
    return {{{"ping"}, "log in, keep the session alive and log out; tells the times", {}, {}, {}, ping}};
}

} // namespace tesselctl

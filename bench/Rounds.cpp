#include "Rounds.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>

namespace bench {
namespace {

double seconds(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace

Cost costOf(const std::function<void()>& work)
{
    const double wall = seconds(CLOCK_MONOTONIC);
    const double cpu = seconds(CLOCK_PROCESS_CPUTIME_ID);
    work();
    return {seconds(CLOCK_MONOTONIC) - wall, seconds(CLOCK_PROCESS_CPUTIME_ID) - cpu};
}

Rounds::Rounds(unsigned rounds, const std::function<void()>& ours, const std::function<void()>& theirs)
{
    for (unsigned round = 0; round < rounds; ++round) {
        const bool oursFirst = round % 2 == 0;
        const Cost first = costOf(oursFirst ? ours : theirs);
        const Cost second = costOf(oursFirst ? theirs : ours);
        const Cost& our = oursFirst ? first : second;
        const Cost& their = oursFirst ? second : first;
        m_wall.push_back(our.wall / their.wall);
        m_cpu.push_back(our.cpu / their.cpu);
    }
}

void tellRow(const std::string& row, std::vector<double> values, double aim, const char* unit)
{
    std::sort(values.begin(), values.end());
    const size_t last = values.size() - 1;
    std::printf(R"({"row": "%s", "median": %.4f, "low": %.4f, "high": %.4f, "rounds": %zu, "aim": %g, )"
                R"("unit": "%s"})"
                "\n",
                row.c_str(), values[last / 2], values[last / 4], values[last - last / 4], values.size(), aim,
                unit);
    std::fflush(stdout);
}

void tellFailure(const std::string& row, const std::string& why)
{
    std::printf(R"({"row": "%s", "failed": "%s"})"
                "\n",
                row.c_str(), why.c_str());
    std::fflush(stdout);
}

void tellPoint(const std::string& curve, const std::string& what, unsigned long number,
               std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    std::printf(R"({"curve": "%s", "of": "%s", "number": %lu, "value": %.4f})"
                "\n",
                curve.c_str(), what.c_str(), number, values[(values.size() - 1) / 2]);
    std::fflush(stdout);
}

int runGroups(const std::vector<Group>& groups, int count, char** arguments)
{
    int next = 1;
    const bool isShort = next < count && std::strcmp(arguments[next], "--short") == 0;
    next += isShort ? 1 : 0;
    const std::vector<std::string> wanted(arguments + next, arguments + count);
    try {
        for (const std::string& name : wanted) {
            if (std::none_of(groups.begin(), groups.end(),
                             [&](const Group& group) { return name == group.name; })) {
                throw std::runtime_error("there is no group " + name);
            }
        }
        for (const Group& group : groups) {
            if (wanted.empty() || std::find(wanted.begin(), wanted.end(), group.name) != wanted.end()) {
                group.run(isShort);
            }
        }
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench: %s\n", problem.what());
    }
    return 1;
}

} // namespace bench

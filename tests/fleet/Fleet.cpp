// A fleet of hosts, each in a process of its own, that show and hide LUNs of one array at the same time; what
// came of it. Ends with status 0 when every pair was done, nothing was left behind, and the slowest did not
// wait too long.

#include "ArraySim.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <numeric>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using tessel_test::ArraySim;

namespace {

struct Plan
{
    unsigned hosts = 300;
    unsigned pairs = 10; ///< of each host
    unsigned luns = 10000;
    unsigned sessions = 100;
    unsigned busy = 5;        ///< percent
    unsigned answerTime = 20; ///< milliseconds
    double ratio = 3;         ///< the slowest hundredth to the median, at most; 0: not looked at
};

struct Report
{
    std::vector<double> pairs; ///< seconds, as the others
    std::vector<double> firstPairs;
    std::vector<double> logins;
    unsigned refusedLogins = 0;
    std::vector<std::string> failures;
};

std::string initiatorOf(unsigned host)
{
    return "iqn.2026-01.example.fleet:host-" + std::to_string(host);
}

pid_t startHost(const ArraySim& array, const Plan& plan, const std::vector<std::string>& luns, unsigned host,
                int input, int output)
{
    std::vector<std::string> words = {FLEET_HOST, array.ip(), std::to_string(array.port()), array.password(),
                                      initiatorOf(host)};
    for (unsigned pair = 0; pair < plan.pairs; ++pair) {
        words.push_back(luns[(host * plan.pairs + pair) % luns.size()]);
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // a fleet that is ended leaves no hosts that look for its array
        dup2(input, STDIN_FILENO);
        dup2(output, STDOUT_FILENO);
        execv(FLEET_HOST, arguments.data());
        _exit(127);
    }
    if (child < 0) {
        throw std::runtime_error("fork");
    }
    return child;
}

void take(const std::string& line, Report& report)
{
    std::istringstream words(line);
    std::string kind;
    double seconds = 0;
    unsigned refusals = 0;
    words >> kind >> seconds >> refusals;
    if (kind == "pair" || kind == "first") {
        report.pairs.push_back(seconds);
        if (kind == "first") {
            report.firstPairs.push_back(seconds);
        }
    } else if (kind == "login") {
        report.logins.push_back(seconds);
        report.refusedLogins += refusals;
    } else {
        report.failures.push_back(line);
    }
}

Report runHosts(const ArraySim& array, const Plan& plan, const std::vector<std::string>& luns,
                std::chrono::steady_clock::time_point& window)
{
    int start[2] = {-1, -1};
    int told[2] = {-1, -1};
    if (pipe2(start, O_CLOEXEC) != 0 || pipe2(told, O_CLOEXEC) != 0) {
        throw std::runtime_error("pipe");
    }
    std::vector<pid_t> processes;
    for (unsigned host = 0; host < plan.hosts; ++host) {
        processes.push_back(startHost(array, plan, luns, host, start[0], told[1]));
    }
    close(told[1]);
    // Hosts have processors of their own: that these processes start is no part of the window.
    std::this_thread::sleep_for(std::chrono::milliseconds(10 * plan.hosts));
    window = std::chrono::steady_clock::now();
    close(start[1]);
    Report report;
    FILE* const lines = fdopen(told[0], "r");
    char line[512];
    while (std::fgets(line, sizeof(line), lines) != nullptr) {
        take(line, report);
    }
    std::fclose(lines);
    for (const pid_t process : processes) {
        int status = 0;
        if (waitpid(process, &status, 0) != process || status != 0) {
            report.failures.push_back("a process ended with status " + std::to_string(status));
        }
    }
    return report;
}

double quantile(const std::vector<double>& sorted, double share)
{
    return sorted.empty() ? 0 : sorted[static_cast<size_t>(share * static_cast<double>(sorted.size() - 1))];
}

void printTimes(const char* title, std::vector<double>& seconds)
{
    std::sort(seconds.begin(), seconds.end());
    std::printf("%s: median %.2f s, 90 %% %.2f s, 99 %% %.2f s, longest %.2f s\n", title,
                quantile(seconds, 0.5), quantile(seconds, 0.9), quantile(seconds, 0.99),
                quantile(seconds, 1));
}

/** The mean of the slowest hundredth of the pairs, in medians. */
double slowest(const std::vector<double>& sorted)
{
    const size_t count = std::max<size_t>(1, sorted.size() / 100);
    return sorted.empty() ? 0
                          : std::accumulate(sorted.end() - static_cast<long>(count), sorted.end(), 0.0) /
                                static_cast<double>(count) / quantile(sorted, 0.5);
}

/** What stands on the array beside one LUN group, host group, view and host for each host of the fleet. */
size_t leftovers(const ArraySim& array, const Plan& plan)
{
    size_t count = 0;
    for (const char* resource : {"lungroup", "hostgroup", "mappingview", "host"}) {
        const size_t objects = array.control("GET", std::string("/objects/") + resource)["data"].size();
        count += objects > plan.hosts ? objects - plan.hosts : plan.hosts - objects;
    }
    return count + array.control("GET", "/exposures").size();
}

size_t requestsIn(const Json::Value& counters)
{
    size_t sum = 0;
    for (const Json::Value& count : counters["requests"]) {
        sum += count.asUInt64();
    }
    return sum;
}

bool print(const ArraySim& array, const Plan& plan, Report& report, double seconds)
{
    const Json::Value counters = array.counters();
    const size_t requests = requestsIn(counters);
    const size_t left = leftovers(array, plan);
    const unsigned sessions = counters["sessionsHighest"].asUInt();
    std::printf("pairs done: %zu of %u in %.1f s\n", report.pairs.size(), plan.hosts * plan.pairs, seconds);
    std::printf("failures: %zu\n", report.failures.size());
    for (size_t i = 0; i < std::min<size_t>(10, report.failures.size()); ++i) {
        std::printf("  %s\n", report.failures[i].c_str());
    }
    std::printf("leftovers: %zu (objects beside four a host, LUNs still shown)\n", left);
    printTimes("time of a pair (show and hide, within a session; not the wait for it)", report.pairs);
    printTimes("  of the first pair of each host, which makes its objects", report.firstPairs);
    const double ratio = slowest(report.pairs);
    std::printf("the slowest hundredth took %.2f medians on average\n", ratio);
    printTimes("wait for a session (logins that were refused, and the pauses between)", report.logins);
    std::printf("refused logins: %u\n", report.refusedLogins);
    std::printf("sessions: at most %u at a time of %u, %u open in the end\n", sessions, plan.sessions,
                counters["sessions"].asUInt());
    std::printf("requests: %zu, %.1f a pair, %.0f a second\n", requests,
                static_cast<double>(requests) / std::max<size_t>(1, report.pairs.size()),
                static_cast<double>(requests) / seconds);
    return report.pairs.size() == size_t{plan.hosts} * plan.pairs && report.failures.empty() && left == 0 &&
           sessions <= plan.sessions && (plan.ratio == 0 || ratio <= plan.ratio);
}

bool readPlan(int argc, char** argv, Plan& plan, int& status)
{
    CLI::App app("Lets a fleet of hosts show and hide LUNs of a simulated array at the same time.", "fleet");
    app.add_option("--hosts", plan.hosts, "Processes, each a host")
        ->capture_default_str()
        ->check(CLI::Range(1, 3000));
    app.add_option("--pairs", plan.pairs, "Shows and hides of each")
        ->capture_default_str()
        ->check(CLI::Range(1, 1000));
    app.add_option("--luns", plan.luns, "LUNs of the array")
        ->capture_default_str()
        ->check(CLI::Range(1, 100000));
    app.add_option("--sessions", plan.sessions, "Sessions of the array")
        ->capture_default_str()
        ->check(CLI::Range(1, 3000));
    app.add_option("--busy", plan.busy, "Percent of the requests refused as busy")
        ->capture_default_str()
        ->check(CLI::Range(0, 50));
    app.add_option("--answer-time", plan.answerTime, "Milliseconds of every answer")->capture_default_str();
    app.add_option("--ratio", plan.ratio, "The slowest hundredth of the pairs in medians, at most; 0: any")
        ->capture_default_str();
    try {
        app.parse(argc, argv);
        return true;
    } catch (const CLI::ParseError& end) {
        status = app.exit(end);
        return false;
    }
}

} // namespace

int main(int argc, char** argv)
{
    Plan plan;
    int status = 0;
    if (!readPlan(argc, argv, plan, status)) {
        return status;
    }
    // The code is the one after which a create reads its new object again: with another one the object is
    // lost.
    const ArraySim array(
        {{"--session-limit", std::to_string(plan.sessions), "--answer-time", std::to_string(plan.answerTime),
          "--busy", std::to_string(plan.busy), "--busy-code", "1077949006"}});
    setenv("OVRA_REST_CA_FILE", array.caFile().c_str(), 1);
    std::printf(
        "%u hosts, %u pairs each; an array with %u LUNs, %u sessions, %u %% busy answers, %u ms an answer\n",
        plan.hosts, plan.pairs, plan.luns, plan.sessions, plan.busy, plan.answerTime);
    std::fflush(stdout);
    const std::vector<std::string> luns = array.bulkLuns(plan.luns);
    for (unsigned host = 0; host < plan.hosts; ++host) {
        Json::Value initiator;
        initiator["ID"] = initiatorOf(host);
        array.create("iscsi_initiator", initiator);
    }
    array.resetCounters();
    std::chrono::steady_clock::time_point window;
    Report report = runHosts(array, plan, luns, window);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - window).count();
    return print(array, plan, report, seconds) ? 0 : 1;
}

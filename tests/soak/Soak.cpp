// Threads that go through all operations while the array fails, is killed and comes back. Ends with status 0
// when nothing came out that must not, everything works when the trouble is over, and the process is as it
// was before.

#include "Client.h"
#include "Trouble.h"

#include <ArraySim.h>
#include <Folder.h>
#include <OwnIpcNamespace.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <thread>

using tessel_test::ArraySim;

namespace {

constexpr int SKIPPED = 77;
constexpr double LONGEST_CALL_S = 120;     // a hang, not a slow machine
constexpr size_t MEMORY_SLACK = 2U << 20U; // bytes: caches of connections and readers that were warm before

struct Plan
{
    unsigned threads = 16;
    unsigned calls = 100000;
    unsigned seed = 1;
};

/** What a process holds that nobody may let grow. */
struct Holdings
{
    size_t descriptors = 0;
    size_t threads = 0;
    size_t bytes = 0;

    static Holdings now()
    {
        const auto entries = [](const char* folder) {
            const std::filesystem::directory_iterator list(folder);
            return static_cast<size_t>(std::distance(begin(list), end(list)));
        };
        return {entries("/proc/self/fd"), entries("/proc/self/task"), mallinfo2().uordblks};
    }
};

class Soak
{
public:
    Soak(const Plan& plan, ArraySim& array) : m_plan(plan), m_array(array)
    {
        // Objects with the ID "1", of each type, for what all threads do to the same ones.
        const std::string lun = array.createLun("one");
        array.createSnapshot(lun, "one");
        for (const std::string resource : {"lungroup", "host", "hostgroup", "mappingview"}) {
            for (const char* name : {"decoy", "one"}) {
                Json::Value members;
                members["NAME"] = name;
                if (resource == "host") {
                    members["OPERATIONSYSTEM"] = 0;
                }
                array.create(resource, members);
            }
        }
        const soak::Target target = {array.ip(), array.port(), array.user(), array.password()};
        for (unsigned i = 0; i < plan.threads; ++i) {
            const std::string name = "soak " + std::to_string(i);
            Json::Value initiator;
            initiator["ID"] = "iqn.2026-01.example.soak:" + std::to_string(i);
            array.create("iscsi_initiator", initiator);
            m_clients.push_back(std::make_unique<soak::Client>(target, name, array.createLun(name),
                                                               initiator["ID"].asString(), plan.seed + i));
        }
    }

    /** Whether all was right. */
    bool run()
    {
        all([](soak::Client& client) { client.runInPeace(); });
        const Holdings before = Holdings::now();
        std::atomic<bool> isOver = false;
        soak::Trouble trouble(m_array, m_plan.seed);
        std::thread troublemaker([&] { trouble.run(isOver); });
        all([this](soak::Client& client) { client.runInTrouble(m_plan.calls); });
        isOver = true;
        troublemaker.join();
        all([](soak::Client& client) { client.runInPeace(); });
        const Holdings after = Holdings::now();

        for (const auto& [what, count] : trouble.done()) {
            std::printf("%s: %u\n", what.c_str(), count);
        }
        const bool isAsBefore = isSound(before, after);
        return areSound() && isAsBefore;
    }

private:
    template <class Work>
    void all(const Work& work)
    {
        std::vector<std::thread> threads;
        for (const auto& client : m_clients) {
            threads.emplace_back([&work, &client] { work(*client); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    /** Each thread may have left a connection for the next one. */
    bool isSound(const Holdings& before, const Holdings& after) const
    {
        std::printf("descriptors: %zu, then %zu; threads: %zu, then %zu; memory: %zu KiB, then %zu\n",
                    before.descriptors, after.descriptors, before.threads, after.threads, before.bytes / 1024,
                    after.bytes / 1024);
        return after.descriptors <= before.descriptors + m_plan.threads && after.threads <= before.threads &&
               after.bytes <= before.bytes + MEMORY_SLACK;
    }

    bool areSound() const
    {
        soak::Tally sum;
        for (const auto& client : m_clients) {
            const soak::Tally& tally = client->tally();
            sum.calls += tally.calls;
            sum.logins += tally.logins;
            for (const auto& [kind, count] : tally.failures) {
                sum.failures[kind] += count;
            }
            if (tally.longestSeconds > sum.longestSeconds) {
                sum.longestSeconds = tally.longestSeconds;
                sum.longest = tally.longest;
            }
            sum.faults.insert(sum.faults.end(), tally.faults.begin(), tally.faults.end());
        }
        std::printf("calls: %lu, %u of them logins; the longest took %.1f s (%s)\nfailures:", sum.calls,
                    sum.logins, sum.longestSeconds, sum.longest.c_str());
        for (const auto& [kind, count] : sum.failures) {
            std::printf(" %lu of kind %d,", count, kind);
        }
        std::printf("\nwhat must not be: %zu\n", sum.faults.size());
        for (size_t i = 0; i < std::min<size_t>(20, sum.faults.size()); ++i) {
            std::printf("  %s\n", sum.faults[i].c_str());
        }
        return sum.faults.empty() && sum.longestSeconds < LONGEST_CALL_S;
    }

    Plan m_plan;
    ArraySim& m_array;
    std::vector<std::unique_ptr<soak::Client>> m_clients;
};

} // namespace

int main(int argc, char** argv)
{
    Plan plan;
    CLI::App app("Lets threads go through all operations while a simulated array fails, dies and comes back.",
                 "soak");
    app.add_option("--threads", plan.threads, "Each with a device manager of its own")->capture_default_str();
    app.add_option("--calls", plan.calls, "Of each thread")->capture_default_str();
    app.add_option("--seed", plan.seed, "What is called, and which trouble comes, is drawn with it")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    if (!enterOwnIpcNamespace()) {
        std::fprintf(stderr, "soak: skipped: no semaphores of its own\n");
        return SKIPPED;
    }
    const tessel_test::Folder folder;
    folder.write("bin/rescan-scsi-bus.sh", "#!/bin/sh\n", 0755); // nothing of this host is scanned
    setenv("PATH", (folder.path() + "/bin:/usr/bin:/bin").c_str(), 1);
    ArraySim array;
    setenv("OVRA_REST_CA_FILE", array.caFile().c_str(), 1);
    return Soak(plan, array).run() ? 0 : 1;
}

// Many at the same time: threads and processes, of one host and of many.

#include "JobTest.h"

#include <gmock/gmock.h>

#include <iostream>
#include <thread>

using namespace ovra::tessel;

namespace {

constexpr unsigned MANY = 20;

class Meeting : public JobTest
{
protected:
    static std::string initiatorOf(unsigned i) { return std::string(INITIATOR) + "-" + std::to_string(i); }

    void expectOneSetOfObjectsForEachHost(size_t hosts) const
    {
        const Graph found = graph();
        EXPECT_EQ(found.leftovers, 0u);
        EXPECT_EQ(found.bound.size(), 4 * hosts) << testing::PrintToString(found.bound);
    }

    void showAllInProcesses(const std::vector<std::string>& by)
    {
        std::vector<pid_t> processes;
        for (unsigned i = 0; i < MANY; ++i) {
            processes.push_back(start({"show", luns[i], by[i % by.size()]}));
        }
        for (const pid_t process : processes) {
            EXPECT_EQ(statusOf(process), 0);
        }
    }

    void showAllInThreads(const std::vector<std::string>& by)
    {
        std::vector<std::thread> threads;
        for (unsigned i = 0; i < MANY; ++i) {
            threads.emplace_back([&, i] {
                try {
                    Array own(10, 20000);
                    login(own);
                    EXPECT_TRUE(ensureVisible(own.manager(), StorageObject::lun(luns[i]),
                                              HostInitiator::iscsi(by[i % by.size()]))
                                    .isVisible);
                } catch (const std::exception& e) {
                    ADD_FAILURE() << e.what();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    void SetUp() override
    {
        JobTest::SetUp();
        for (unsigned i = 0; i < MANY; ++i) {
            luns.push_back(sim.createLun("lun " + std::to_string(i)));
            initiators.push_back(initiatorOf(i));
            newInitiator(initiators.back());
        }
    }

    void expectAllSeen(const std::vector<std::string>& by)
    {
        for (unsigned i = 0; i < MANY; ++i) {
            EXPECT_TRUE(sees(luns[i], by[i % by.size()])) << i;
        }
    }

    std::vector<std::string> luns;
    std::vector<std::string> initiators;
};

TEST_F(Meeting, ThreadsOfOneHostShareItsObjects)
{
    showAllInThreads({initiators[0]});
    expectAllSeen({initiators[0]});
    expectOneSetOfObjectsForEachHost(1);
}

TEST_F(Meeting, ThreadsOfManyHostsDoNotMeet)
{
    showAllInThreads(initiators);
    expectAllSeen(initiators);
    expectOneSetOfObjectsForEachHost(MANY);
}

TEST_F(Meeting, ProcessesOfOneHostShareItsObjects)
{
    showAllInProcesses({initiators[0]});
    expectAllSeen({initiators[0]});
    expectOneSetOfObjectsForEachHost(1);
}

TEST_F(Meeting, ProcessesOfManyHostsDoNotMeet)
{
    showAllInProcesses(initiators);
    expectAllSeen(initiators);
    expectOneSetOfObjectsForEachHost(MANY);
}

TEST_F(Meeting, ShowingAndHidingDifferentLunsDoNotDisturbEachOther)
{
    show(luns[0], initiators[0]);
    std::vector<pid_t> processes;
    for (unsigned i = 1; i < MANY; ++i) {
        show(luns[i], initiators[0]);
    }
    for (unsigned i = 0; i < MANY; ++i) {
        processes.push_back(start({i % 2 == 0 ? "hide" : "show", luns[i], initiators[0]}));
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(statusOf(process), 0);
    }
    for (unsigned i = 0; i < MANY; ++i) {
        EXPECT_EQ(sees(luns[i], initiators[0]), i % 2 == 1) << i;
    }
}

TEST_F(Meeting, FiveHundredCyclesLeaveWhatTheFirstOneLeft)
{
    show(luns[0], initiators[0]);
    hide(luns[0], initiators[0]);
    const Graph first = graph();
    unsigned long requests = 0;
    for (unsigned cycle = 1; cycle < 500; ++cycle) {
        ASSERT_TRUE(show(luns[cycle % MANY], initiators[0]).isVisible);
        requests = requestsOf([&] { ASSERT_FALSE(hide(luns[cycle % MANY], initiators[0]).isVisible); });
    }
    EXPECT_EQ(graph().bound, first.bound);
    EXPECT_EQ(graph().leftovers, 0u);
    EXPECT_LE(requests, 25u);
    std::cout << "requests of the last hide: " << requests << "\n";
}

} // namespace

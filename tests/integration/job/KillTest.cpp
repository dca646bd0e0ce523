// The process killed before and after each single request, and the same call once more.

#include "JobTest.h"

#include <gmock/gmock.h>

#include <csignal>
#include <iostream>

namespace {

class Killed : public JobTest
{
protected:
    void SetUp() override {}

    /** A fresh array with two LUNs and one initiator, and a LUN shown before the call. */
    void prepare()
    {
        sim.reset();
        newInitiator();
        lun = sim.createLun("lun");
        const std::string other = sim.createLun("other");
        if (!before.empty()) {
            ASSERT_EQ(run({"show", before == "lun" ? lun : other, INITIATOR}), 0);
        }
    }

    std::vector<std::string> call() const { return {verb, lun, INITIATOR}; }

    /** Every cell: killed at that request, then the same call. The graph is that of an undisturbed call. */
    void expectTheSameGraphEverywhere()
    {
        setenv("JOB_TRIES", "4", 1); // a name that a crash took is not waited for long
        setenv("JOB_PAUSE", "5", 1);
        prepare();
        std::string requests;
        ASSERT_EQ(run(call(), &requests), 0);
        const Graph wanted = graph();
        ASSERT_EQ(wanted.leftovers, 0u);
        const unsigned long count = std::stoul(requests);
        unsigned leftovers = 0;
        for (unsigned long request = 1; request <= count; ++request) {
            for (const char* when : {"before", "after"}) {
                prepare();
                std::vector<std::string> killed = call();
                killed.insert(killed.end(), {when, std::to_string(request)});
                const std::string where = std::string(when) + " request " + std::to_string(request);
                EXPECT_EQ(run(killed), 128 + SIGKILL) << where;
                EXPECT_EQ(run(call()), 0) << where;
                const Graph found = graph();
                EXPECT_EQ(found.bound, wanted.bound) << where;
                EXPECT_LE(found.leftovers, 1u) << where;
                leftovers += found.leftovers;
                EXPECT_EQ(run(call()), 0) << where << ", a third time";
                EXPECT_EQ(graph().leftovers, found.leftovers) << where;
            }
        }
        std::cout << verb << (before.empty() ? "" : ", " + before + " shown before") << ": " << 2 * count
                  << " kills, " << leftovers << " left something that nothing leads to\n";
    }

    std::string verb = "show";
    std::string before; ///< the LUN that is shown before the call, if any
    std::string lun;
};

TEST_F(Killed, WhileTheFirstLunIsShown)
{
    expectTheSameGraphEverywhere();
}

TEST_F(Killed, WhileAnotherLunIsShown)
{
    before = "other";
    expectTheSameGraphEverywhere();
}

TEST_F(Killed, WhileALunIsHidden)
{
    verb = "hide";
    before = "lun";
    expectTheSameGraphEverywhere();
}

} // namespace

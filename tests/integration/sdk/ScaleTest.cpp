// A list as long as real groups are: its requests, its connections and what it takes.

#include "LoggedIn.h"

#include <fstream>
#include <iostream>

namespace {

class Scale : public LoggedIn
{
};

unsigned long peakKilobytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            unsigned long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

} // namespace

TEST_F(Scale, TenThousandLunsOfAGroupAreListedWithOneRequestEachAndOneMore)
{
    const unsigned count = 10000;
    const LunGroupMO group = newLunGroup("large");
    sim.bulkLuns(count, group.ID);
    sim.resetCounters();
    const unsigned long before = peakKilobytes();
    LunQuery all;
    const std::vector<LunMO> luns = sdk.luns().getLunByLunGroup(group.ID, all);
    ASSERT_EQ(luns.size(), count);
    EXPECT_FALSE(luns.back().WWN.empty());

    const unsigned long reads = sim.requests("GET", "/lun/{id}");
    const unsigned long lists = sim.requests("GET", "/lun/associate");
    const unsigned connections = sim.counters()["connections"].asUInt();
    std::cout << count << " LUNs: " << reads + lists << " requests, " << connections
              << " further connections, peak memory " << peakKilobytes() << " KiB (" << before
              << " KiB before the list)\n";
    EXPECT_EQ(reads, count);
    EXPECT_EQ(lists, 1u);
    EXPECT_EQ(connections, 0u); // the one of the login serves all
}

#ifndef SDK_LOGGEDIN_H
#define SDK_LOGGEDIN_H

#include "ArraySim.h"
#include "Sdk.h"

#include <gtest/gtest.h>

/** A simulated array and an SDK that is logged in to it. */
class LoggedIn : public testing::Test
{
public:
    explicit LoggedIn(tessel_test::ArraySimOptions options = {}, unsigned int retryTimes = 0)
        : sim(std::move(options)), sdk(retryTimes, 1000)
    {
        trust(sim.caFile());
    }

    void SetUp() override { ASSERT_TRUE(login(sdk)); }

    bool login(Sdk& who) const
    {
        return who.array().loginDevice(sim.ip(), sim.port(), sim.user(), sim.password(), USERTYPE_LOCAL);
    }

    LunMO newLun(const std::string& name)
    {
        LunMO wanted;
        wanted.NAME = name;
        wanted.PARENTID = "0";
        wanted.CAPACITY = 1024 * 1024;
        return sdk.luns().createLun(wanted);
    }

    LunGroupMO newLunGroup(const std::string& name)
    {
        LunGroupMO wanted;
        wanted.NAME = name;
        return sdk.lunGroups().createLunGroup(wanted);
    }

    tessel_test::ArraySim sim;
    Sdk sdk;
};

#endif

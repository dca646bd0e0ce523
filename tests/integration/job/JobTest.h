#ifndef JOB_JOBTEST_H
#define JOB_JOBTEST_H

#include "ArraySim.h"

#include <tessel/Access.h>
#include <tessel/Array.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

/** What stands on an array between disks and hosts: what is bound, with stems for names, and what nothing
 * leads to. */
struct Graph
{
    std::vector<std::string> bound;
    unsigned leftovers = 0;
};

/** A simulated array, and a session with it. */
class JobTest : public testing::Test
{
protected:
    explicit JobTest(tessel_test::ArraySimOptions options = {});

    void SetUp() override { login(array); }
    void login(ovra::tessel::Array& who) const;

    ovra::tessel::AccessResult show(const std::string& lun, const std::string& initiator = INITIATOR);
    ovra::tessel::AccessResult hide(const std::string& lun, const std::string& initiator = INITIATOR);

    void newInitiator(const std::string& name = INITIATOR) const;
    /** Makes an object, and puts another one into it. @return ID of the first. */
    std::string make(const std::string& resource, const std::string& name) const;
    void put(const std::string& resource, const std::string& owner, int memberType,
             const std::string& member) const;
    bool sees(const std::string& lun, const std::string& initiator = INITIATOR);

    Graph graph() const;
    /** Requests of a call, as the array counts them. */
    unsigned long requestsOf(const std::function<void()>& call) const;

    /** Runs access_job with arguments. @return its exit status, or 128 and the signal that ended it. */
    int run(const std::vector<std::string>& arguments, std::string* output = nullptr) const;
    pid_t start(const std::vector<std::string>& arguments, int output = -1) const;
    static int statusOf(pid_t process);

    static constexpr const char* INITIATOR = "iqn.2026-01.example:job";

    tessel_test::ArraySim sim;
    ovra::tessel::Array array{10, 20000};
    ovra::tessel::AccessOptions options; ///< short pauses

private:
    std::vector<Json::Value> all(const std::string& resource) const;
    std::vector<Json::Value> associated(const std::string& resource, int type, const std::string& id) const;
};

#endif

#ifndef SIMULATOR_ARRAYTEST_H
#define SIMULATOR_ARRAYTEST_H

#include "support/ArrayClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using tessel_test::ArrayClient;
using tessel_test::Reply;

/** A test with an array of its own and a client that is logged in. */
class ArrayTest : public ::testing::Test
{
protected:
    ArrayTest() : client(array) { EXPECT_EQ(client.login().code(), 0); }

    std::string lun(const std::string& name)
    {
        return client.create("/lun", R"({"NAME":")" + name + R"(","PARENTID":"0","CAPACITY":2048})");
    }
    std::string named(const std::string& resource, const std::string& name)
    {
        return client.create(resource, R"({"NAME":")" + name + R"("})");
    }
    std::string host(const std::string& name)
    {
        return client.create("/host", R"({"NAME":")" + name + R"(","OPERATIONSYSTEM":0})");
    }
    /** A request that associates: POST or PUT with the owner, the member's type and the member. */
    Reply associate(const std::string& method, const std::string& path, const std::string& owner, int type,
                    const std::string& member)
    {
        return client.request(method, path,
                              R"({"ID":")" + owner + R"(","ASSOCIATEOBJTYPE":)" + std::to_string(type) +
                                  R"(,"ASSOCIATEOBJID":")" + member + R"("})");
    }

    tessel_test::ArraySim array;
    ArrayClient client;
};

#endif

// What a list takes beside the records that it brings: counted where this thread takes and gives back memory.

#include "Sdk.h"

#include <MisbehavingServer.h>

#include <gtest/gtest.h>
#include <ovra/rest/RestSettings.h>

#include <algorithm>
#include <iostream>
#include <malloc.h>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void __libc_free(void* memory);
}

namespace {

thread_local long t_held = 0; // bytes
thread_local long t_peak = 0;

void* taken(void* memory)
{
    t_held += static_cast<long>(malloc_usable_size(memory));
    t_peak = std::max(t_peak, t_held);
    return memory;
}

void givenBack(void* memory)
{
    t_held -= static_cast<long>(malloc_usable_size(memory));
}

} // namespace

extern "C" void* malloc(size_t size)
{
    return taken(__libc_malloc(size));
}
extern "C" void* calloc(size_t count, size_t size)
{
    return taken(__libc_calloc(count, size));
}
extern "C" void* realloc(void* memory, size_t size)
{
    givenBack(memory);
    return taken(__libc_realloc(memory, size));
}
extern "C" void free(void* memory)
{
    givenBack(memory);
    __libc_free(memory);
}

namespace tessel_test {
namespace {

std::string recordOf(const std::string& id)
{
    return R"({"ID":")" + id + R"(","TYPE":11,"NAME":"database-of-)" + id +
           R"(","PARENTTYPE":216,"PARENTID":"0","PARENTNAME":"StoragePool001","HEALTHSTATUS":"1",)"
           R"("RUNNINGSTATUS":"27","DESCRIPTION":"","ALLOCTYPE":"1","CAPACITY":"2097152",)"
           R"("ALLOCCAPACITY":"0","THINCAPACITYUSAGE":"0","SECTORSIZE":"512","EXPOSEDTOINITIATOR":"true",)"
           R"("WWN":"6a08cf810075766e1efc050700000005","OWNINGCONTROLLER":"0A","WORKINGCONTROLLER":"0A"})";
}

/** An array with so many LUNs. */
MisbehavingServer::Handler arrayOf(unsigned count)
{
    std::string all = recordOf("0");
    for (unsigned i = 1; i < count; ++i) {
        all += "," + recordOf(std::to_string(i));
    }
    return [list = "[" + all + "]"](const ReceivedRequest& request) {
        const std::string& target = request.target();
        return Behaviour::success(target.find("/lun/associate") != target.npos
                                      ? list
                                      : recordOf(target.substr(target.rfind('/') + 1)));
    };
}

TEST(ListMemory, IsHalfOfTheRecordsBesideThemAtMost)
{
    constexpr unsigned COUNT = 3000;
    MisbehavingServer server;
    server.setHandler(arrayOf(COUNT));
    RestSettings settings;
    settings.caFile = TestCertificates::instance().caFile();
    RestSetSettings(settings);
    CDeviceManager* const array = CDeviceManager::getInstance(0, 0);
    ASSERT_TRUE(array->useConnection("127.0.0.1", server.port(), "d", "token", "cookie=1"));
    auto* const luns = static_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
    luns->getLun("0"); // makes what is kept for the next one

    LunQuery query;
    const long before = t_held;
    t_peak = before;
    {
        const std::vector<LunMO> list = luns->getLunByLunGroup("1", query);
        const long peak = t_peak - before;
        const long listed = t_held;
        const std::vector<LunMO> copy = list; // no larger than it must be
        const long records = t_held - listed;
        ASSERT_EQ(COUNT, list.size());
        EXPECT_EQ("database-of-2999", list.back().NAME);
        std::cout << records / COUNT << " bytes a record, " << peak / COUNT << " at most\n";
        EXPECT_LE(static_cast<double>(peak), 1.5 * static_cast<double>(records));
    }
    CDeviceManager::releaseInstance(array);
}

} // namespace
} // namespace tessel_test

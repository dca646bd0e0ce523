#include "types/StoragePool.h"

#include "types/Common.h"
#include "types/Types.h"
#include "wire/Codes.h"
#include "wire/Query.h"

#include <algorithm>

namespace arraysim {
namespace {

constexpr unsigned long long gibibyte = (1ULL << 30) / sectorSize;

Object pool(const char* id, const char* name, unsigned long long sectors)
{
    return {id, {{"NAME", name}, {"TOTALCAPACITY", std::to_string(sectors)}}, 0};
}

std::vector<Object> factoryPools()
{
    return {pool("0", "performance", 64ULL * 1024 * gibibyte),
            pool("1", "capacity", 1024ULL * 1024 * gibibyte), pool("2", "small", gibibyte)};
}

} // namespace

unsigned long long freeSectors(const Object& pool)
{
    const auto total = decimal(pool.value("TOTALCAPACITY")).value_or(0);
    return total - decimal(pool.value("ALLOCATED")).value_or(0);
}

void allocate(World& world, const std::string& poolId, unsigned long long sectors)
{
    Object pool = world.at(Type::storagePool, poolId);
    if (sectors > freeSectors(pool)) {
        throw ArrayError(Code::capacityShort, "The storage pool " + poolId + " has " +
                                                  std::to_string(freeSectors(pool)) + " free sectors of " +
                                                  std::to_string(sectorSize) + " bytes, but " +
                                                  std::to_string(sectors) +
                                                  " are needed: choose a smaller capacity or another pool.");
    }
    const auto allocated = decimal(pool.value("ALLOCATED")).value_or(0);
    pool.values["ALLOCATED"] = std::to_string(allocated + sectors);
    world.put(Type::storagePool, std::move(pool));
}

void release(World& world, const std::string& poolId, unsigned long long sectors)
{
    Object pool = world.at(Type::storagePool, poolId);
    const auto allocated = decimal(pool.value("ALLOCATED")).value_or(0);
    pool.values["ALLOCATED"] = std::to_string(allocated - std::min(allocated, sectors));
    world.put(Type::storagePool, std::move(pool));
}

const ObjectType& storagePoolType()
{
    static const ObjectType type = [] {
        ObjectType pools{Type::storagePool, "storage pool", {"storagepool"}, {}};
        pools.callerManaged = false;
        pools.factory = factoryPools;
        pools.fields = {
            Field("NAME", Wire::text).filter(),
            descriptionField(),
            healthField(),
            runningField(runningOnline),
            Field("SECTORSIZE", Wire::decimal).fallback(std::to_string(sectorSize)),
            Field("TOTALCAPACITY", Wire::decimal),
            Field("FREECAPACITY", Wire::decimal).derived([](const World&, const Object& object) {
                return std::to_string(freeSectors(object));
            }),
        };
        return pools;
    }();
    return type;
}

} // namespace arraysim

#include "types/StoragePool.h"

#include "base/Codes.h"
#include "base/Text.h"
#include "types/Common.h"
#include "types/Types.h"

#include <algorithm>

namespace arraysim {
namespace {

constexpr unsigned long long GIBIBYTE = (1ULL << 30) / SECTOR_SIZE;

Object pool(const char* id, const char* name, unsigned long long sectors)
{
    return {id, {{"NAME", name}, {"TOTALCAPACITY", std::to_string(sectors)}}, 0};
}

std::vector<Object> factoryPools()
{
    return {pool("0", "performance", 64ULL * 1024 * GIBIBYTE),
            pool("1", "capacity", 1024ULL * 1024 * GIBIBYTE), pool("2", "small", GIBIBYTE)};
}

} // namespace

unsigned long long freeSectors(const Object& pool)
{
    const auto total = decimal(pool.value("TOTALCAPACITY")).value_or(0);
    return total - std::min(total, decimal(pool.value("ALLOCATED")).value_or(0));
}

void allocate(World& world, const std::string& poolId, unsigned long long sectors)
{
    Object pool = world.at(Type::STORAGE_POOL, poolId);
    if (sectors > freeSectors(pool)) {
        throw ArrayError(Code::CAPACITY_SHORT, "The storage pool " + poolId + " has " +
                                                   std::to_string(freeSectors(pool)) + " free sectors of " +
                                                   std::to_string(SECTOR_SIZE) + " bytes, but " +
                                                   std::to_string(sectors) +
                                                   " are needed: choose a smaller capacity or another pool.");
    }
    const auto allocated = decimal(pool.value("ALLOCATED")).value_or(0);
    pool.values["ALLOCATED"] = std::to_string(allocated + sectors);
    world.put(Type::STORAGE_POOL, std::move(pool));
}

void release(World& world, const std::string& poolId, unsigned long long sectors)
{
    Object pool = world.at(Type::STORAGE_POOL, poolId);
    const auto allocated = decimal(pool.value("ALLOCATED")).value_or(0);
    pool.values["ALLOCATED"] = std::to_string(allocated - std::min(allocated, sectors));
    world.put(Type::STORAGE_POOL, std::move(pool));
}

std::string addPool(World& world, const std::string& name, unsigned long long sectors)
{
    std::string id = world.nextId(Type::STORAGE_POOL);
    World::Transaction transaction(world);
    world.put(Type::STORAGE_POOL, pool(id.c_str(), name.c_str(), sectors));
    transaction.commit();
    return id;
}

const ObjectType& storagePoolType()
{
    static const ObjectType type = [] {
        ObjectType pools{Type::STORAGE_POOL, "storage pool", {"storagepool"}, {}};
        pools.callerManaged = false;
        pools.factory = factoryPools;
        pools.fields = {
            Field("NAME", Wire::TEXT).filter(),
            descriptionField(),
            healthField(),
            runningField(RUNNING_ONLINE),
            Field("SECTORSIZE", Wire::DECIMAL).fallback(std::to_string(SECTOR_SIZE)),
            Field("TOTALCAPACITY", Wire::DECIMAL),
            Field("FREECAPACITY", Wire::DECIMAL).derived([](const World&, const Object& object) {
                return std::to_string(freeSectors(object));
            }),
        };
        return pools;
    }();
    return type;
}

} // namespace arraysim

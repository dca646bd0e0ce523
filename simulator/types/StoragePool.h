#ifndef SIMULATOR_TYPES_STORAGEPOOL_H
#define SIMULATOR_TYPES_STORAGEPOOL_H

#include "model/World.h"

namespace arraysim {

/** The sectors of the pool that no LUN has allocated. */
unsigned long long freeSectors(const Object& pool);

/** Takes sectors of the pool, or throws ArrayError (CAPACITY_SHORT). Within a transaction. */
void allocate(World& world, const std::string& poolId, unsigned long long sectors);
/** A further pool. @return its ID */
std::string addPool(World& world, const std::string& name, unsigned long long sectors);
void release(World& world, const std::string& poolId, unsigned long long sectors);

} // namespace arraysim

#endif

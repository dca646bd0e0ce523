#include "model/BulkLuns.h"

#include "base/Json.h"
#include "model/Operations.h"

namespace arraysim {

Json::Value createLuns(World& world, const Json::Value& wanted)
{
    allowMembers(wanted, {"count", "pool", "lungroup", "prefix", "sectors"});
    const unsigned count = numberIn(wanted, "count", 0);
    const std::string prefix = textIn(wanted, "prefix", "bulk_");
    const std::string group = textIn(wanted, "lungroup", "");
    Json::Value body(Json::objectValue);
    body["PARENTID"] = textIn(wanted, "pool", "0");
    body["CAPACITY"] = numberIn(wanted, "sectors", 2048);
    Json::Value ids(Json::arrayValue);

    World::Transaction transaction(world);
    for (unsigned i = 0; i < count; ++i) {
        body["NAME"] = prefix + world.nextId(Type::LUN);
        const std::string id = createObject(world, objectType(Type::LUN), body, {})["ID"].asString();
        if (!group.empty()) {
            associate(world, *relationBetween(Type::LUN_GROUP, Type::LUN), group, id);
        }
        ids.append(id);
    }
    transaction.commit();
    Json::Value made(Json::objectValue);
    made["ids"] = ids;
    return made;
}

} // namespace arraysim

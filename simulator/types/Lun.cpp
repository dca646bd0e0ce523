#include "base/Codes.h"
#include "base/Text.h"
#include "types/Common.h"
#include "types/StoragePool.h"
#include "types/Types.h"

namespace arraysim {
namespace {

constexpr unsigned long long LARGEST_LUN = (256ULL << 40) / SECTOR_SIZE;

bool isThin(const Object& lun)
{
    return lun.value("ALLOCTYPE") == "1";
}

/** A thick LUN takes all of its capacity from the pool, a thin one what it allocates at first. */
void completeLun(Change& lun)
{
    if (!lun.creating()) {
        return;
    }
    const bool thin = lun.value("ALLOCTYPE") == "1";
    const auto capacity = decimal(lun.value("CAPACITY")).value_or(0);
    const auto initial = decimal(lun.givenText("INITIALALLOCCAPACITY")).value_or(0);
    if (!thin && (lun.gave("INITIALALLOCCAPACITY") || lun.gave("THINCAPACITYUSAGE"))) {
        throw ArrayError(Code::MEMBER_INVALID,
                         "INITIALALLOCCAPACITY and THINCAPACITYUSAGE are for thin LUNs only.");
    }
    if (initial > capacity) {
        throw ArrayError(Code::MEMBER_INVALID, "INITIALALLOCCAPACITY " + std::to_string(initial) +
                                                   " is above the CAPACITY " + std::to_string(capacity) +
                                                   ".");
    }
    lun.values["ALLOCCAPACITY"] = std::to_string(thin ? initial : capacity);
    allocate(lun.world, lun.parentId, thin ? initial : capacity);
}

void removeLun(World& world, const Object& lun)
{
    const std::string pool = *world.linked({Type::LUN, lun.id}, Type::STORAGE_POOL).begin();
    release(world, pool, decimal(lun.value("ALLOCCAPACITY")).value_or(0));
}

/** What a LUN that grows or shrinks takes of its pool. */
void adjustLun(World& world, const Object& before, Object& after)
{
    if (!isThin(after)) {
        after.values["ALLOCCAPACITY"] = after.value("CAPACITY");
    }
    const std::string pool = *world.linked({Type::LUN, before.id}, Type::STORAGE_POOL).begin();
    release(world, pool, decimal(before.value("ALLOCCAPACITY")).value_or(0));
    allocate(world, pool, decimal(after.value("ALLOCCAPACITY")).value_or(0));
}

std::vector<Field> lunFields()
{
    return {
        nameField(),
        descriptionField(),
        healthField(),
        runningField(RUNNING_ONLINE),
        Field("ALLOCTYPE", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 1).fallback("0").filter(),
        Field("CAPACITY", Wire::DECIMAL).given(Given::REQUIRED).range(1, LARGEST_LUN),
        Field("ALLOCCAPACITY", Wire::DECIMAL),
        Field("SECTORSIZE", Wire::DECIMAL).fallback(std::to_string(SECTOR_SIZE)),
        Field("INITIALALLOCCAPACITY", Wire::DECIMAL).given(Given::AT_CREATE).transient(),
        Field("THINCAPACITYUSAGE", Wire::DECIMAL)
            .given(Given::AT_CREATE)
            .range(0, 100)
            .fallback("0")
            .onlyWhere(isThin),
        Field("MIRRORPOLICY", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 1).fallback("1"),
        Field("WRITEPOLICY", Wire::DECIMAL).given(Given::AT_CREATE).range(1, 3).fallback("1"),
        Field("PREFETCHPOLICY", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 3).fallback("3"),
        Field("PREFETCHVALUE", Wire::DECIMAL).given(Given::AT_CREATE).fallback("0"),
        Field("DATATRANSFERPOLICY", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 3).fallback("0"),
        Field("INITIALDISTRIBUTEPOLICY", Wire::DECIMAL).given(Given::AT_CREATE).range(0, 3).fallback("0"),
        Field("OWNINGCONTROLLER", Wire::TEXT).given(Given::AT_CREATE).range(1, 16).fallback("0A"),
        Field("WORKINGCONTROLLER", Wire::TEXT).derived([](const World&, const Object& lun) {
            return lun.value("OWNINGCONTROLLER", "0A");
        }),
        wwnField('0'),
        associatedFlag("ISADD2LUNGROUP", Type::LUN, Type::LUN_GROUP),
        exposedFlag(Type::LUN),
    };
}

} // namespace

const ObjectType& lunType()
{
    static const ObjectType type = [] {
        ObjectType luns{Type::LUN, "LUN", {"lun"}, lunFields()};
        luns.parent = Parent{Type::STORAGE_POOL, true, false};
        luns.complete = completeLun;
        luns.remove = removeLun;
        luns.adjusted = adjustLun;
        return luns;
    }();
    return type;
}

} // namespace arraysim

#include "types/Common.h"
#include "types/StoragePool.h"
#include "types/Types.h"
#include "wire/Codes.h"
#include "wire/Query.h"

namespace arraysim {
namespace {

constexpr unsigned long long largestLun = (256ULL << 40) / sectorSize;

bool isThin(const Object& lun)
{
    return lun.value("ALLOCTYPE") == "1";
}

/// A thick LUN takes all of its capacity from the pool, a thin one what it allocates at first.
void completeLun(Change& lun)
{
    if (!lun.creating()) {
        return;
    }
    const bool thin = lun.value("ALLOCTYPE") == "1";
    const auto capacity = decimal(lun.value("CAPACITY")).value_or(0);
    const auto initial = decimal(lun.givenText("INITIALALLOCCAPACITY")).value_or(0);
    if (!thin && (lun.gave("INITIALALLOCCAPACITY") || lun.gave("THINCAPACITYUSAGE"))) {
        throw ArrayError(Code::memberInvalid,
                         "INITIALALLOCCAPACITY and THINCAPACITYUSAGE are for thin LUNs only.");
    }
    if (initial > capacity) {
        throw ArrayError(Code::memberInvalid, "INITIALALLOCCAPACITY " + std::to_string(initial) +
                                                  " is above the CAPACITY " + std::to_string(capacity) + ".");
    }
    lun.values["ALLOCCAPACITY"] = std::to_string(thin ? initial : capacity);
    allocate(lun.world, lun.parentId, thin ? initial : capacity);
}

void removeLun(World& world, const Object& lun)
{
    const std::string pool = *world.linked({Type::lun, lun.id}, Type::storagePool).begin();
    release(world, pool, decimal(lun.value("ALLOCCAPACITY")).value_or(0));
}

std::vector<Field> lunFields()
{
    return {
        nameField(),
        descriptionField(),
        healthField(),
        runningField(runningOnline),
        Field("ALLOCTYPE", Wire::decimal).given(Given::atCreate).range(0, 1).fallback("0").filter(),
        Field("CAPACITY", Wire::decimal).given(Given::required).range(1, largestLun),
        Field("ALLOCCAPACITY", Wire::decimal),
        Field("SECTORSIZE", Wire::decimal).fallback(std::to_string(sectorSize)),
        Field("INITIALALLOCCAPACITY", Wire::decimal).given(Given::atCreate).transient(),
        Field("THINCAPACITYUSAGE", Wire::decimal)
            .given(Given::atCreate)
            .range(0, 100)
            .fallback("0")
            .onlyWhere(isThin),
        Field("MIRRORPOLICY", Wire::decimal).given(Given::atCreate).range(0, 1).fallback("1"),
        Field("WRITEPOLICY", Wire::decimal).given(Given::atCreate).range(1, 3).fallback("1"),
        Field("PREFETCHPOLICY", Wire::decimal).given(Given::atCreate).range(0, 3).fallback("3"),
        Field("PREFETCHVALUE", Wire::decimal).given(Given::atCreate).fallback("0"),
        Field("DATATRANSFERPOLICY", Wire::decimal).given(Given::atCreate).range(0, 3).fallback("0"),
        Field("INITIALDISTRIBUTEPOLICY", Wire::decimal).given(Given::atCreate).range(0, 3).fallback("0"),
        Field("OWNINGCONTROLLER", Wire::text).given(Given::atCreate).range(1, 16).fallback("0A"),
        Field("WORKINGCONTROLLER", Wire::text).derived([](const World&, const Object& lun) {
            return lun.value("OWNINGCONTROLLER", "0A");
        }),
        wwnField('0'),
        associatedFlag("ISADD2LUNGROUP", Type::lun, Type::lunGroup),
        exposedFlag(Type::lun),
    };
}

} // namespace

const ObjectType& lunType()
{
    static const ObjectType type = [] {
        ObjectType luns{Type::lun, "LUN", {"lun"}, lunFields()};
        luns.parent = Parent{Type::storagePool, true, false};
        luns.complete = completeLun;
        luns.remove = removeLun;
        return luns;
    }();
    return type;
}

} // namespace arraysim

#ifndef STORAGE_STORAGEFIELDS_H
#define STORAGE_STORAGEFIELDS_H

#include "session/FieldTable.h"

#include <tessel/Lun.h>
#include <tessel/LunGroup.h>
#include <tessel/Snapshot.h>

namespace ovra::tessel {

namespace readers {

inline void poolType(uint32_t& out, Json::Value&, const char*)
{
    out = MO_STORAGEPOOL;
}

/** Sectors to bytes (docs/oddities.md#sectorsize); more than 64 bits hold reads as unset. */
inline void asBytes(uint64_t& out, Json::Value& record, const char* key)
{
    uint64_t sectors = 0;
    uint64_t sectorSize = 0;
    asUll(sectors, record, key);
    asUll(sectorSize, record, "SECTORSIZE");
    if (__builtin_mul_overflow(sectors, sectorSize, &out)) {
        out = UINT64_MAX;
    }
}

inline void asThinUsage(uint64_t& out, Json::Value& record, const char* key)
{
    if (RestResponse::str2ul(text(record, "ALLOCTYPE")) == 1 && record.isMember(key)) {
        asUll(out, record, key);
    }
}

} // namespace readers

template <>
struct FieldTable<LunMO>
{
    static constexpr auto fields = std::make_tuple(
        fields::read("ID", &LunMO::ID, readers::asText), fields::read("NAME", &LunMO::NAME, readers::asText),
        fields::read("PARENTTYPE", &LunMO::PARENTTYPE, readers::poolType),
        fields::read("PARENTID", &LunMO::PARENTID, readers::asText),
        fields::read("PARENTNAME", &LunMO::PARENTNAME, readers::asText),
        fields::read("HEALTHSTATUS", &LunMO::HEALTHSTATUS, readers::asUl),
        fields::read("RUNNINGSTATUS", &LunMO::RUNNINGSTATUS, readers::asUl),
        fields::read("DESCRIPTION", &LunMO::DESCRIPTION, readers::asText),
        fields::read("ALLOCTYPE", &LunMO::ALLOCTYPE, readers::asUl),
        fields::read("CAPACITY", &LunMO::CAPACITY, readers::asBytes),
        fields::read("ALLOCCAPACITY", &LunMO::ALLOCCAPACITY, readers::asBytes),
        // The same key a second time, unscaled: docs/oddities.md#alloccapacity
        fields::named("ALLOCCAPACITYRAW", &LunMO::ALLOCCAPACITYRAW, "ALLOCCAPACITY", readers::asUll),
        fields::read("THINCAPACITYUSAGE", &LunMO::THINCAPACITYUSAGE, readers::asThinUsage),
        fields::read("EXPOSEDTOINITIATOR", &LunMO::EXPOSEDTOINITIATOR, readers::asFlag),
        fields::read("WWN", &LunMO::WWN, readers::asText),
        fields::read("OWNINGCONTROLLER", &LunMO::OWNINGCONTROLLER, readers::asText),
        fields::read("WORKINGCONTROLLER", &LunMO::WORKINGCONTROLLER, readers::asText),
        fields::read("ISADD2LUNGROUP", &LunMO::ISADD2LUNGROUP, readers::asFlag));
    static constexpr MOType TYPE = MO_LUN;
    static constexpr const char* LIST = "/lun/associate?";
    static constexpr auto filter =
        std::make_tuple(&LunMO::ID, &LunMO::NAME, &LunMO::PARENTID, &LunMO::ALLOCTYPE, &LunMO::RUNNINGSTATUS,
                        &LunMO::HEALTHSTATUS, &LunMO::ISADD2LUNGROUP);
};

template <>
struct FieldTable<LunGroupMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &LunGroupMO::ID, readers::asText),
                        fields::read("NAME", &LunGroupMO::NAME, readers::asText),
                        fields::read("DESCRIPTION", &LunGroupMO::DESCRIPTION, readers::asText),
                        fields::read("ISADD2MAPPINGVIEW", &LunGroupMO::ISADD2MAPPINGVIEW, readers::asFlag),
                        fields::read("APPTYPE", &LunGroupMO::APPTYPE, readers::asUl),
                        fields::read("GROUPTYPE", &LunGroupMO::GROUPTYPE, readers::asUl));
    static constexpr MOType TYPE = MO_LUNGROUP;
    static constexpr const char* LIST = "/lungroup/associate?";
    static constexpr auto filter = std::make_tuple(&LunGroupMO::ID, &LunGroupMO::NAME,
                                                   &LunGroupMO::ISADD2MAPPINGVIEW, &LunGroupMO::APPTYPE);
};

template <>
struct FieldTable<SnapshotMO>
{
    static constexpr auto fields =
        std::make_tuple(fields::read("ID", &SnapshotMO::ID, readers::asText),
                        fields::read("NAME", &SnapshotMO::NAME, readers::asText),
                        fields::read("PARENTTYPE", &SnapshotMO::PARENTTYPE, readers::asJsonSigned),
                        fields::read("PARENTID", &SnapshotMO::PARENTID, readers::asText),
                        fields::read("PARENTNAME", &SnapshotMO::PARENTNAME, readers::asText),
                        fields::read("HEALTHSTATUS", &SnapshotMO::HEALTHSTATUS, readers::asUl),
                        fields::read("RUNNINGSTATUS", &SnapshotMO::RUNNINGSTATUS, readers::asUl),
                        fields::read("DESCRIPTION", &SnapshotMO::DESCRIPTION, readers::asText),
                        // Numbers of the array: docs/oddities.md#snapshot-capacities
                        fields::read("USERCAPACITY", &SnapshotMO::USERCAPACITY, readers::asUll),
                        fields::read("CONSUMEDCAPACITY", &SnapshotMO::CONSUMEDCAPACITY, readers::asUll),
                        fields::read("WWN", &SnapshotMO::WWN, readers::asText));
    static constexpr MOType TYPE = MO_SNAPSHOT;
    static constexpr const char* LIST = "/snapshot/associate?";
    static constexpr auto filter = std::make_tuple(&SnapshotMO::ID, &SnapshotMO::NAME, &SnapshotMO::PARENTID,
                                                   &SnapshotMO::RUNNINGSTATUS, &SnapshotMO::HEALTHSTATUS);
};

} // namespace ovra::tessel

#endif

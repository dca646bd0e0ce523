#ifndef STORAGE_SNAPSHOTFIELDS_H
#define STORAGE_SNAPSHOTFIELDS_H

#include "session/FieldTable.h"

#include <tessel/Snapshot.h>

namespace ovra::tessel {

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

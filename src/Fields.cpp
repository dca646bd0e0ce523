// Beside the composition root, since it knows every record.

#include <tessel/Fields.h>

#include "access/AccessFields.h"
#include "ports/PortFields.h"
#include "storage/StorageFields.h"

using namespace ovra::tessel;

namespace {

template <class Record, class Value>
RecordField shown(const SecretField<Record, Value>& field, const Value&, const Value&)
{
    return {field.name, RecordField::TEXT, "", false, true};
}

template <class Record, class Value>
RecordField shown(const Field<Record, Value>& field, const Value& value, const Value& unset)
{
    if constexpr (std::is_same_v<Value, bool>) {
        return {field.name, RecordField::FLAG, value ? "true" : "false", true, false};
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return {field.name, RecordField::TEXT, value, !value.empty(), false};
    } else {
        // A default other than 0 means unset; 0 does so for the array's codes alone.
        constexpr bool IS_CODE = std::is_same_v<Value, uint32_t>;
        return {field.name, RecordField::NUMBER, std::to_string(value),
                value != unset || (unset == 0 && !IS_CODE), false};
    }
}

template <class Record>
std::vector<RecordField> walk(const Record& record)
{
    const Record unset;
    std::vector<RecordField> walked;
    std::apply(
        [&](const auto&... field) {
            (walked.push_back(shown(field, record.*field.member, unset.*field.member)), ...);
        },
        FieldTable<Record>::fields);
    return walked;
}

} // namespace

std::vector<RecordField> fieldsOf(const LunMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const LunGroupMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const SnapshotMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const HostMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const HostGroupMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const IscsiInitiatorMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const FCInitiatorMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const MappingViewMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const FCPortMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const FCoEPortMO& record)
{
    return walk(record);
}
std::vector<RecordField> fieldsOf(const ETHPortMO& record)
{
    return walk(record);
}

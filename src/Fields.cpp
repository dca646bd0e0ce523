// Beside the composition root, since it knows every record.

#include <tessel/Fields.h>

#include "access/FCInitiatorFields.h"
#include "access/HostFields.h"
#include "access/HostGroupFields.h"
#include "access/IscsiInitiatorFields.h"
#include "access/MappingViewFields.h"
#include "ports/EthPortFields.h"
#include "ports/FCPortFields.h"
#include "ports/FCoEPortFields.h"
#include "storage/LunFields.h"
#include "storage/LunGroupFields.h"
#include "storage/SnapshotFields.h"

using namespace ovra::tessel;

namespace {

RecordField::Kind kindOf(bool)
{
    return RecordField::FLAG;
}
RecordField::Kind kindOf(const std::string&)
{
    return RecordField::TEXT;
}
template <class Number>
RecordField::Kind kindOf(Number)
{
    return RecordField::NUMBER;
}

std::string textOf(bool flag)
{
    return flag ? "true" : "false";
}
std::string textOf(const std::string& text)
{
    return text;
}
template <class Number>
std::string textOf(Number number)
{
    return std::to_string(number);
}

// A default other than 0 means unset; 0 does so for the array's codes, which are the unsigned 32-bit numbers.
bool isSet(bool, bool)
{
    return true;
}
bool isSet(const std::string& text, const std::string&)
{
    return !text.empty();
}
bool isSet(uint32_t code, uint32_t unset)
{
    return code != unset;
}
template <class Number>
bool isSet(Number number, Number unset)
{
    return unset == 0 || number != unset;
}

template <class Record>
std::vector<RecordField> walk(const Record& record)
{
    const Record unset;
    std::vector<RecordField> walked;
    const auto visit = [&](const auto& field) {
        const auto& value = record.*field.member;
        const std::string text = field.secret ? std::string() : textOf(value);
        walked.push_back({field.name, kindOf(value), text, !field.secret && isSet(value, unset.*field.member),
                          field.secret});
    };
    std::apply([&](const auto&... field) { (visit(field), ...); }, FieldTable<Record>::fields);
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

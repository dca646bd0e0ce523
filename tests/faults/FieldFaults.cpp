#include "faults/Matrix.h"

#include "access/AccessFields.h"
#include "ports/PortFields.h"
#include "storage/StorageFields.h"

#include <ovra/rest/RestRequest.h>

using tessel_test::Behaviour;

namespace {

/** What a field may be, and is not; null: missing. */
constexpr const char* VALUES[] = {nullptr,
                                  "null",
                                  "\"\"",
                                  "\"text\"",
                                  "\"0\"",
                                  "\"-1\"",
                                  "\" 1\"",
                                  "\"1.5\"",
                                  "\"4294967296\"",
                                  "\"18446744073709551615\"",
                                  "\"18446744073709551616\"",
                                  "\"99999999999999999999999999\"",
                                  "\"two\\nlines\\u0000\"",
                                  "\"\xff\"",
                                  "0",
                                  "1",
                                  "-1",
                                  "2147483648",
                                  "4294967295",
                                  "4294967296",
                                  "18446744073709551615",
                                  "18446744073709551616",
                                  "-9223372036854775808",
                                  "1.5",
                                  "1e300",
                                  "true",
                                  "false",
                                  "[]",
                                  "[1]",
                                  "{}",
                                  "{\"a\":1}"};

/** How a field is read. */
enum class Kind
{
    TEXT,  ///< as a text, or a number in one: every scalar is one
    OTHER, ///< otherwise
    NEVER
};

template <class Record, class T>
Kind kindOf(const ovra::tessel::Field<Record, T>& field)
{
    namespace readers = ovra::tessel::readers;
    if (field.read == readers::asNothing<T>) {
        return Kind::NEVER;
    }
    bool isText = false;
    if constexpr (std::is_same_v<T, std::string>) {
        isText = field.read == readers::asText || field.read == readers::asTextIfPresent;
    } else {
        isText = field.read == readers::asUl<T> || field.read == readers::asUll<T> ||
                 field.read == readers::asFlag<T>;
    }
    return isText ? Kind::TEXT : Kind::OTHER;
}

Fault faultOf(const std::string& key, const char* value, Kind kind)
{
    const bool isId = key == "ID";
    std::string record = isId ? "{" : "{\"ID\":\"7\"";
    if (value != nullptr) {
        record += (isId ? "\"" : ",\"") + key + "\":" + value;
    }
    record += "}";
    const bool isNested = value != nullptr && (value[0] == '[' || value[0] == '{');
    const Fault::Ending nested = kind == Kind::TEXT ? Fault::SUCCESS_UNLESS_READ : Fault::EITHER;
    const Fault::Ending scalar = kind == Kind::TEXT ? Fault::SUCCESS : Fault::EITHER;
    return {"Field " + key + " is " + (value == nullptr ? "missing" : value),
            [record](const std::string&) { return Behaviour::success(record); },
            isId       ? Fault::EITHER
            : isNested ? nested
                       : scalar,
            isNested ? static_cast<int>(REST_ANSWER_UNREADABLE) : 0, ""};
}

template <class Record>
std::vector<Fault> faultsOfRecord()
{
    std::vector<Fault> all;
    const auto add = [&](const auto& field) {
        const Kind kind = kindOf(field);
        for (const char* const value : VALUES) {
            if (kind != Kind::NEVER) {
                all.push_back(faultOf(field.key, value, kind));
            }
        }
    };
    std::apply([&](const auto&... field) { (add(field), ...); }, ovra::tessel::FieldTable<Record>::fields);
    return all;
}

/** The operations that read one record. */
const struct
{
    const char* operation;
    std::vector<Fault> (*faults)();
} READERS[] = {
    {"getLun", faultsOfRecord<LunMO>},
    {"getLunGroup", faultsOfRecord<LunGroupMO>},
    {"getSnapshot", faultsOfRecord<SnapshotMO>},
    {"getHost", faultsOfRecord<HostMO>},
    {"getHostGroup", faultsOfRecord<HostGroupMO>},
    {"getIscsiInitiator", faultsOfRecord<IscsiInitiatorMO>},
    {"getFCInitiator", faultsOfRecord<FCInitiatorMO>},
    {"getMappingView", faultsOfRecord<MappingViewMO>},
    {"getFCPort", faultsOfRecord<FCPortMO>},
    {"getFCoEPort", faultsOfRecord<FCoEPortMO>},
    {"getETHPort", faultsOfRecord<ETHPortMO>},
};

} // namespace

std::vector<Fault> fieldFaults(const Exchange& exchange)
{
    for (const auto& reader : READERS) {
        if (exchange.name() == reader.operation) {
            return reader.faults();
        }
    }
    return {};
}

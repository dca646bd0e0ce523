#ifndef SESSION_FIELDTABLE_H
#define SESSION_FIELDTABLE_H

#include <ovra/rest/RestResponse.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>

namespace ovra::tessel {

/**
 * One field of a record: its name, the JSON key that it is read from, and how. A record's fields are declared
 * once, in a specialisation of FieldTable; reading answers, writing filters and walking records all go by
 * that table.
 */
template <class Record, class T>
struct Field
{
    using Reader = void (*)(T& out, Json::Value& record, const char* key);

    const char* name;
    T Record::*member;
    const char* key;
    Reader read;
};

/** One that is sent and never read, nor shown. */
template <class Record, class T>
struct SecretField : Field<Record, T>
{
};

/**
 * Specialised for every record with a static constexpr tuple "fields", in the order of the record's members.
 * A record that can be listed has the tuple "filter" too, of the members that select; one that is listed by
 * what it is associated with, its TYPE and the path LIST.
 */
template <class Record>
struct FieldTable;

/** The number, or the largest that its type holds. */
template <class T>
T saturated(uint64_t value)
{
    return static_cast<T>(std::min<uint64_t>(value, std::numeric_limits<T>::max()));
}

/** Never wraps: a count that is too large is not a small one. */
inline uint64_t saturatedSum(uint64_t a, uint64_t b)
{
    return a > UINT64_MAX - b ? UINT64_MAX : a + b;
}

namespace readers {

/** A member's value; null when it is missing. */
inline const Json::Value* find(const Json::Value& record, const char* key)
{
    return record.find(key, key + std::strlen(key));
}

/** Of a field that is never read from the array. */
template <class T>
void asNothing(T&, Json::Value&, const char*)
{
}

inline std::string text(const Json::Value& record, const char* key)
{
    const Json::Value* const value = find(record, key);
    return value != nullptr ? value->asString() : std::string();
}

inline void asText(std::string& out, Json::Value& record, const char* key)
{
    out = text(record, key);
}

inline void asTextIfPresent(std::string& out, Json::Value& record, const char* key)
{
    if (const Json::Value* const value = find(record, key)) {
        out = value->asString();
    }
}

template <class T>
void asUl(T& out, Json::Value& record, const char* key)
{
    out = saturated<T>(RestResponse::str2ul(text(record, key)));
}

template <class T>
void asUll(T& out, Json::Value& record, const char* key)
{
    out = saturated<T>(RestResponse::str2ull(text(record, key)));
}

inline void asJsonUnsigned(uint32_t& out, Json::Value& record, const char* key)
{
    out = record[key].asUInt();
}

inline void asJsonSigned(int32_t& out, Json::Value& record, const char* key)
{
    out = record[key].asInt();
}

/** As the C function does it: docs/oddities.md#runspeed */
inline void asAtoi(int64_t& out, Json::Value& record, const char* key)
{
    out = std::atoi(text(record, key).c_str()); // NOLINT(cert-err34-c): 0 is what is wanted
}

/** Set only by exactly "true": docs/oddities.md#flags */
template <class T>
void asFlag(T& out, Json::Value& record, const char* key)
{
    out = text(record, key) == "true" ? T(1) : T(0);
}

} // namespace readers

namespace fields {

template <class R, class T>
constexpr Field<R, T> read(const char* key, T R::*member, typename Field<R, T>::Reader reader)
{
    return {key, member, key, reader};
}

/** A field whose JSON key is not its name, or that takes more than its key to read. */
template <class R, class T>
constexpr Field<R, T> named(const char* name, T R::*member, const char* key,
                            typename Field<R, T>::Reader reader)
{
    return {name, member, key, reader};
}

template <class R, class T>
constexpr Field<R, T> notRead(const char* name, T R::*member)
{
    return {name, member, name, readers::asNothing<T>};
}

template <class R, class T>
constexpr SecretField<R, T> secret(const char* name, T R::*member)
{
    return {notRead(name, member)};
}

} // namespace fields

/** Reads every field of a record, in the order of its table. */
template <class Record>
Record readRecord(Json::Value& json)
{
    Record record;
    std::apply([&](const auto&... field) { (field.read(record.*field.member, json, field.key), ...); },
               FieldTable<Record>::fields);
    return record;
}

/** The JSON key of a member. */
template <class Record, class T>
const char* keyOf(T Record::*member)
{
    const char* key = nullptr;
    const auto consider = [&](const auto& field) {
        if constexpr (std::is_same_v<decltype(field.member), T Record::*>) {
            key = field.member == member ? field.key : key;
        }
    };
    std::apply([&](const auto&... field) { (consider(field), ...); }, FieldTable<Record>::fields);
    return key;
}

} // namespace ovra::tessel

#endif

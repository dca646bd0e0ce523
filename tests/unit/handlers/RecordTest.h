#ifndef UNIT_HANDLERS_RECORDTEST_H
#define UNIT_HANDLERS_RECORDTEST_H

#include "unit/handlers/HandlerTest.h"

#include <map>
#include <sstream>

/** A value of a record as text: texts in quotes, all ones as "max". */
template <class T>
std::string shown(const T& value)
{
    std::ostringstream out;
    if constexpr (std::is_same_v<T, std::string>) {
        out << '"' << value << '"';
    } else if constexpr (std::is_same_v<T, uint64_t>) {
        value == UINT64_MAX ? out << "max" : out << value;
    } else {
        out << std::boolalpha << value;
    }
    return out.str();
}

/** The values of the members, in their order, separated by blanks. */
template <class Record, class... Members>
std::string shownAll(const Record& record, Members... members)
{
    std::string all;
    ((all += (all.empty() ? "" : " ") + shown(record.*members)), ...);
    return all;
}

/** A record as one get operation reads it. */
struct RecordCase
{
    std::string record;
    std::string operation;
    /** Reads a record and shows all of its members. */
    std::function<std::string(CDeviceManagerImpl&)> read;
    std::string defaults;
    std::string json; ///< a whole record
    std::string values;
    bool needsId = true; ///< a record without "ID" is taken for none
    Lines numbers = {};  ///< keys that are read as JSON numbers
    Lines unread = {};   ///< keys that are in the record and are not read
};

inline void PrintTo(const RecordCase& c, std::ostream* out)
{
    *out << c.record;
}

std::vector<RecordCase> storageRecords();
std::vector<RecordCase> accessRecords();
std::vector<RecordCase> portRecords();

#endif

#ifndef OVRA_REST_KEPTRECORDS_H
#define OVRA_REST_KEPTRECORDS_H

#include "StrictJson.h"

#include <ovra/text/Secret.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ovra::rest {

/** Records of which one member is kept, as text: the values of JsonCpp would take ten times as much. */
class KeptRecords
{
public:
    /** Adds what is to be kept of a record that was read from a text; of what is no object, all of it. */
    void add(std::string_view text, const Json::Value& record, const std::string& member);

    size_t count() const { return m_ends.size(); }
    /** Bytes that they take; at most UINT32_MAX. */
    size_t size() const { return m_texts.size() + m_ends.size() * sizeof(uint32_t); }

    /** A record, until another one is asked for. */
    Json::Value& operator[](size_t index);

private:
    SecretText m_texts; ///< each an array of one element
    std::vector<uint32_t> m_ends;
    SecretValue m_shown; ///< the array of one of them
    size_t m_index = SIZE_MAX;
};

} // namespace ovra::rest

#endif

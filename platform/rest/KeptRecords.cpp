#include "KeptRecords.h"

namespace ovra::rest {

namespace {

/** Where a value stands in the text that it was read from. */
std::string_view within(std::string_view text, const Json::Value& value)
{
    const auto begin = static_cast<size_t>(value.getOffsetStart());
    return text.substr(begin, static_cast<size_t>(value.getOffsetLimit()) - begin);
}

} // namespace

void KeptRecords::add(std::string_view text, const Json::Value& record, const std::string& member)
{
    if (!record.isObject()) {
        m_texts.append("[").append(within(text, record)).append("]");
    } else if (const Json::Value* const value = record.find(member.data(), member.data() + member.size())) {
        m_texts.append("[{\"").append(member).append("\":").append(within(text, *value)).append("}]");
    } else {
        m_texts.append("[{}]");
    }
    m_ends.push_back(static_cast<uint32_t>(m_texts.size()));
}

Json::Value& KeptRecords::operator[](size_t index)
{
    if (m_index != index) {
        const size_t begin = index == 0 ? 0 : m_ends[index - 1];
        m_shown = parseStrictly(std::string_view(m_texts).substr(begin, m_ends[index] - begin)).value();
        m_index = index;
    }
    return m_shown[0U];
}

} // namespace ovra::rest

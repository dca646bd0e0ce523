#include "AnswerReader.h"

namespace ovra::rest {

bool AnswerReader::add(std::string_view part)
{
    const size_t held =
        m_member.empty() || m_unreadable ? m_size : m_rest.size() + m_element.size() + m_kept.size();
    if (held + part.size() > MOST_BYTES) {
        m_excess = {"bytes", 0, MOST_BYTES};
        return false;
    }
    m_size += part.size();
    if (m_member.empty()) {
        m_rest.append(part);
        return true;
    }
    while (!part.empty() && !m_unreadable && m_excess.what == nullptr) {
        const RecordSplitter::Piece piece = m_splitter.next(part);
        (piece.ofElement ? m_element : m_rest).append(piece.text);
        if (piece.endsElement) {
            endElement(piece.endsArray);
        }
    }
    return m_excess.what == nullptr;
}

/** What stands between two commas, or a comma and a bracket: one value; in an empty array none. */
void AnswerReader::endElement(bool endsArray)
{
    m_element += "]]";
    if (holdsTooMuch(m_element)) {
        return;
    }
    const std::optional<SecretValue> read = parseStrictly(m_element);
    const Json::ArrayIndex values = read ? (*read)[0U].size() : 0;
    if (values == 1) {
        m_kept.add(m_element, (*read)[0U][0U], m_member);
    } else {
        m_unreadable = !read || !endsArray || m_kept.count() != 0;
    }
    m_element = ELEMENT_BEGINS;
}

bool AnswerReader::holdsTooMuch(std::string_view json)
{
    // Each value takes a byte at least: what is short needs no counting.
    const size_t values = json.size() < MOST_VALUES ? 0 : countValues(json);
    if (values > MOST_VALUES) {
        m_excess = {"values", values, MOST_VALUES};
    }
    return values > MOST_VALUES;
}

std::optional<Answer> AnswerReader::answer()
{
    if (m_unreadable || holdsTooMuch(m_rest)) {
        return std::nullopt;
    }
    std::optional<Answer> answer = parseAnswer(m_rest);
    if (answer) {
        answer->kept = std::move(m_kept);
    }
    return answer;
}

} // namespace ovra::rest

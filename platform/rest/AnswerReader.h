#ifndef OVRA_REST_ANSWERREADER_H
#define OVRA_REST_ANSWERREADER_H

#include "Answer.h"
#include "Excess.h"
#include "RecordSplitter.h"

#include <optional>
#include <string>
#include <string_view>

namespace ovra::rest {

/** Reads an answer as it comes. */
class AnswerReader
{
public:
    /** Most bytes of an answer; of a list of which one member is kept, most bytes to keep. */
    static constexpr size_t MOST_BYTES = 64UL * 1024 * 1024;

    /** @param member of each record of a list that is kept; null: everything is. */
    explicit AnswerReader(const char* member) : m_member(member == nullptr ? "" : member) {}

    /** Takes the next part; false when the answer is too large. */
    bool add(std::string_view part);
    /** Begins anew. */
    void clear() { *this = AnswerReader(m_member.c_str()); }
    /** The answer, behind its last part; nothing when it is too large, or cannot be read. */
    std::optional<Answer> answer();

    const Excess& excess() const { return m_excess; }

private:
    /** As deep as in an answer: what a reader makes of it does not depend on how it is cut. */
    static constexpr const char* ELEMENT_BEGINS = "[[";

    void endElement(bool endsArray);
    bool holdsTooMuch(std::string_view json);

    std::string m_member;
    RecordSplitter m_splitter;
    SecretText m_rest;
    SecretText m_element = ELEMENT_BEGINS;
    KeptRecords m_kept;
    size_t m_size = 0;
    bool m_unreadable = false; ///< whatever follows
    Excess m_excess;
};

} // namespace ovra::rest

#endif

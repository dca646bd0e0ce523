#include "RecordSplitter.h"

namespace ovra::rest {

namespace {

constexpr std::string_view NAME = "data";
constexpr size_t DEPTH_OF_ELEMENTS = 2;

} // namespace

RecordSplitter::Piece RecordSplitter::next(std::string_view& part)
{
    Piece piece = {part, m_inArray, false, false};
    for (size_t i = 0; i < part.size(); ++i) {
        if (m_inArray ? endsElement(part[i]) : beginsArray(part[i])) {
            piece.endsElement = m_inArray;
            piece.endsArray = m_inArray && part[i] == ']';
            // The brackets belong to the rest, and a comma to nothing.
            piece.text = part.substr(0, m_inArray ? i : i + 1);
            part.remove_prefix(piece.endsArray ? i : i + 1);
            m_inArray = !piece.endsElement || !piece.endsArray;
            return piece;
        }
    }
    part = {};
    return piece;
}

bool RecordSplitter::beginsArray(char character)
{
    if (m_inString) {
        goThroughString(character);
        return false;
    }
    const bool isFound = character == '[' && m_depth == DEPTH_OF_ELEMENTS - 1 && m_name == NAME;
    switch (character) {
    case ' ':
    case '\t':
    case '\r':
    case '\n':
    case ':':
        return false;
    case '"':
        m_inString = true;
        break;
    case '[':
    case '{':
        ++m_depth;
        break;
    case ']':
    case '}':
        m_depth -= m_depth > 0 ? 1 : 0;
        break;
    default:
        break;
    }
    m_name.clear();
    return isFound;
}

bool RecordSplitter::endsElement(char character)
{
    if (m_inString) {
        goThroughString(character);
        return false;
    }
    const bool isOutermost = m_depth == DEPTH_OF_ELEMENTS;
    switch (character) {
    case '"':
        m_inString = true;
        return false;
    case '[':
    case '{':
        ++m_depth;
        return false;
    case ']':
    case '}':
        m_depth -= isOutermost ? 0 : 1;
        return isOutermost && character == ']';
    default:
        return isOutermost && character == ',';
    }
}

void RecordSplitter::goThroughString(char character)
{
    if (!m_escaped && character == '"') {
        m_inString = false;
        return;
    }
    m_escaped = !m_escaped && character == '\\';
    if (m_name.size() <= NAME.size()) {
        m_name += character;
    }
}

} // namespace ovra::rest

#ifndef OVRA_REST_RECORDSPLITTER_H
#define OVRA_REST_RECORDSPLITTER_H

#include <string>
#include <string_view>

namespace ovra::rest {

/**
 * Cuts the records of a list out of an answer while it comes: the elements of the array "data" of its
 * outermost object, and the rest, in which the array stays empty. The answer is JSON if and only if the rest
 * and each element are, and no element but the only one of an array is blank. A "data" that is spelled with
 * escapes stays in the rest.
 */
class RecordSplitter
{
public:
    struct Piece
    {
        std::string_view text; ///< goes on from the last one of its sort
        bool ofElement;        ///< else of the rest
        bool endsElement;
        bool endsArray; ///< with it
    };

    /** Takes the next piece from a part of the text that is not empty. */
    Piece next(std::string_view& part);

private:
    bool beginsArray(char character);
    bool endsElement(char character);
    void goThroughString(char character);

    bool m_inArray = false;
    bool m_inString = false;
    bool m_escaped = false;
    size_t m_depth = 0;
    std::string m_name; ///< the string that ended last, when nothing but a colon has followed; its beginning
};

} // namespace ovra::rest

#endif

#ifndef SESSION_FEWLINES_H
#define SESSION_FEWLINES_H

#include "session/Log.h"

namespace ovra::tessel {

/** The level of lines of which there may be thousands: the first few at their own, the others at the lowest.
 */
class FewLines
{
public:
    explicit FewLines(OS_LOGLEVEL level) : m_level(level) {}

    /** Of the next line. */
    OS_LOGLEVEL next() { return m_count++ < MOST ? m_level : OS_LOG_DEBUG; }
    /** How many were at the lowest level. */
    unsigned rest() const { return m_count > MOST ? m_count - MOST : 0; }

private:
    static constexpr unsigned MOST = 10;

    OS_LOGLEVEL m_level;
    unsigned m_count = 0;
};

} // namespace ovra::tessel

#endif

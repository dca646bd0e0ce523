#ifndef UNIT_HANDLERS_JOURNAL_H
#define UNIT_HANDLERS_JOURNAL_H

#include <string>
#include <vector>

/** Lines of the recorder's journal, and the ways in which operations leave them there. */
using Lines = std::vector<std::string>;

namespace journal {

inline void append(Lines& all, const Lines& more)
{
    all.insert(all.end(), more.begin(), more.end());
}

inline void append(Lines& all, const std::string& line)
{
    all.push_back(line);
}

/** One journal out of lines and pieces of journals. */
template <class... Parts>
Lines join(const Parts&... parts)
{
    Lines all;
    (append(all, parts), ...);
    return all;
}

inline std::string enter(const std::string& operation)
{
    return "info: enter " + operation + " successfully!";
}

inline std::string leave(const std::string& operation)
{
    return "info: leave " + operation + " successfully!";
}

/** An operation that succeeds. */
template <class... Parts>
Lines done(const std::string& operation, const Parts&... inside)
{
    return join(enter(operation), inside..., "record " + operation + " 0", leave(operation));
}

/** An operation that fails with a result code. */
template <class... Parts>
Lines broken(const std::string& operation, int code, const Parts&... inside)
{
    return join(enter(operation), inside..., "record! " + operation + " " + std::to_string(code));
}

inline std::string noAnswer(const std::string& operation)
{
    return "url error or internet error " + operation;
}

inline std::string errorAnswer(int code, const std::string& description, const std::string& operation)
{
    return "get error response, error code:" + std::to_string(code) + ", description:" + description + " " +
           operation;
}

} // namespace journal

#endif

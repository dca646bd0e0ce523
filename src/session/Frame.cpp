#include "session/Frame.h"

namespace ovra::tessel {

Frame::Frame(const std::string& operation) : record(operation), observed(operation), errors(operation)
{
    *this = loggedAs(operation).errorsAs(operation);
}

Frame::Frame(const char* name, const char* enterLine, const char* leaveLine, const char* noAnswerLine,
             const char* refusalPrefix)
    : record(name), observed(name), enter(enterLine), leave(leaveLine), noAnswer(noAnswerLine),
      refused(refusalPrefix), recordLast(true)
{
}

Frame Frame::loggedAs(const std::string& name) const
{
    Frame frame = *this;
    frame.enter = "enter " + name + " successfully!";
    frame.leave = "leave " + name + " successfully!";
    return frame;
}

Frame Frame::errorsAs(const std::string& name) const
{
    Frame frame = *this;
    frame.errors = name;
    frame.noAnswer = "url error or internet error " + name;
    return frame;
}

Frame Frame::observedAs(const std::string& name) const
{
    Frame frame = *this;
    frame.observed = name;
    return frame;
}

Frame Frame::closingAsEntered() const
{
    Frame frame = *this;
    frame.leave = frame.enter;
    return frame;
}

Frame Frame::recordedLast() const
{
    Frame frame = *this;
    frame.recordLast = true;
    return frame;
}

Frame Frame::timedFirst() const
{
    Frame frame = *this;
    frame.timeFirst = true;
    return frame;
}

std::string Frame::refusal(int code, const std::string& description) const
{
    if (!refused.empty()) {
        return refused + description;
    }
    return "get error response, error code:" + std::to_string(code) + ", description:" + description + " " +
           errors;
}

} // namespace ovra::tessel

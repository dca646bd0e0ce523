#include "session/Frame.h"

namespace ovra::tessel {

namespace {

std::string enterLine(const std::string& name)
{
    return "enter " + name + " successfully!";
}

std::string leaveLine(const std::string& name)
{
    return "leave " + name + " successfully!";
}

} // namespace

Frame::Frame(const std::string& operation)
    : record(operation), observed(operation), enter(enterLine(operation)), leave(leaveLine(operation)),
      errors(operation)
{
}

Frame::Frame(const char* name, const char* enterText, const char* leaveText, const char* noAnswerText,
             const char* refusalPrefix)
    : record(name), observed(name), enter(enterText), leave(leaveText), noAnswer(noAnswerText),
      refused(refusalPrefix), recordLast(true)
{
}

Frame Frame::loggedAs(const std::string& name) const
{
    Frame frame = *this;
    frame.enter = enterLine(name);
    frame.leave = leaveLine(name);
    return frame;
}

Frame Frame::errorsAs(const std::string& name) const
{
    Frame frame = *this;
    frame.errors = name;
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

std::string Frame::unanswered() const
{
    return noAnswer.empty() ? "url error or internet error " + errors : noAnswer;
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

#include "unit/handlers/Exchange.h"

Exchange& Exchange::variant(const std::string& text)
{
    variantText = text;
    return *this;
}

Exchange& Exchange::loggedAs(const std::string& name)
{
    frames.front().logged = name;
    return *this;
}

Exchange& Exchange::closingAsEntered()
{
    frames.front().close = "enter ";
    return *this;
}

Exchange& Exchange::through(const std::string& worker, const std::string& errorName)
{
    frames.push_back({worker, worker, "leave "});
    errorsNamed = errorName;
    return *this;
}

Exchange& Exchange::throughRecordedAs(const std::string& worker, const std::string& recordName)
{
    frames.push_back({recordName, worker, "leave "});
    errorsNamed = recordName;
    return *this;
}

Exchange& Exchange::errorsAs(const std::string& caller)
{
    errorsNamed = caller;
    return *this;
}

Exchange& Exchange::after(const Reply& reply, const Lines& seen)
{
    repliesBefore.push_back(reply);
    seenBefore = seen;
    return *this;
}

Exchange& Exchange::reading(const Reply& replyWithData, const Lines& seen)
{
    reads = true;
    answer = replyWithData;
    seenAfter = seen;
    return *this;
}

Exchange& Exchange::then(const Reply& reply, const Lines& seen)
{
    repliesThen.push_back(reply);
    seenThen = seen;
    return *this;
}

Lines Exchange::succeeded() const
{
    Lines seen = journal::join(request, seenAfter);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        const bool outermost = frame + 1 == frames.rend();
        seen = journal::join(journal::enter(frame->logged), outermost ? seenBefore : Lines(), seen,
                             outermost ? seenThen : Lines(), "record " + frame->record + " 0",
                             "info: " + frame->close + frame->logged + " successfully!");
    }
    return seen;
}

Lines Exchange::failed(const std::string& message, int code) const
{
    Lines seen = journal::join(request, "error: " + message);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        const bool outermost = frame + 1 == frames.rend();
        seen = journal::join(journal::enter(frame->logged), outermost ? seenBefore : Lines(), seen,
                             "record! " + frame->record + " " + std::to_string(code));
    }
    return seen;
}

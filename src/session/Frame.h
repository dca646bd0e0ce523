#ifndef SESSION_FRAME_H
#define SESSION_FRAME_H

#include <string>

namespace ovra::tessel {

/** What a public call is named in the logs and says of its way; handlers' operations all speak alike. */
struct Frame
{
    Frame(const char* operation) : Frame(std::string(operation)) {}
    explicit Frame(const std::string& operation);
    /** The calls of the session have texts of their own; an empty name or leave line: none is written. */
    Frame(const char* name, const char* enterText, const char* leaveText, const char* noAnswerText,
          const char* refusalPrefix);

    /** Names the operation otherwise in its enter and leave lines. */
    Frame loggedAs(const std::string& name) const;
    /** Names the operation otherwise behind its messages. */
    Frame errorsAs(const std::string& name) const;
    /** Names the operation otherwise to the observers. */
    Frame observedAs(const std::string& name) const;
    /** Closes with the enter text once more in place of the leave text. */
    Frame closingAsEntered() const;
    /** Writes the interface record behind the leave line in place of before it. */
    Frame recordedLast() const;
    /** Takes the start time ahead of the enter line in place of behind it. */
    Frame timedFirst() const;

    /** The operation as its caller knows it. */
    std::string name() const { return !errors.empty() ? errors : record.empty() ? "keepAlive" : record; }

    /** What is said when there is no answer. */
    std::string unanswered() const;

    /** What is said of an answer that tells an error. */
    std::string refusal(int code, const std::string& description) const;

    std::string record;   ///< its name in the interface log; empty: no record is written
    std::string observed; ///< its name to the observers
    std::string enter;
    std::string leave;
    std::string errors;   ///< follows each message, save those of an error answer to the session
    std::string noAnswer; ///< empty: the operations' common text
    std::string refused;  ///< stands before the array's description; empty: the operations' common text
    bool recordLast = false;
    bool timeFirst = false;
};

} // namespace ovra::tessel

#endif

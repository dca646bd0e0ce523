#ifndef SESSION_SESSIONCALL_H
#define SESSION_SESSIONCALL_H

#include "session/InterfaceRecord.h"

#include <ovra/rest/RestResponse.h>
#include <ovra/threads/NoCancellation.h>

#include <cxxabi.h>
#include <string>

namespace ovra::tessel {

/** One call of a session operation: its result is a bool, and nothing is thrown to its caller. */
class SessionCall
{
public:
    /** What a call is named in the interface log, and what it says of its failures; no name: no record. */
    struct Texts
    {
        const char* name;
        const char* start;
        const char* noAnswer;
        const char* errorAnswer; ///< the array's description follows
    };

    explicit SessionCall(const Texts& texts);

    template <class Body>
    bool run(Body body) const
    {
        const NoCancellation whole; // a thread that is cancelled meanwhile ends behind the call
        try {
            body();
            record(RESULT_SUCCESS);
            return true;
        } catch (const Failure& failure) {
            record(failure.result);
        } catch (const abi::__forced_unwind&) {
            throw; // the thread is being cancelled: nothing may stop that
        } catch (...) {
            unreadable();
        }
        return false;
    }

    /** Ends the call with the line and the result code unless the condition holds. */
    void require(bool holds, const char* line, int result = RESULT_BAD_ARGUMENT) const;
    /** Ends the call when no answer was received, or one that tells an error. */
    void checkAnswer(int sent, RestResponse& response) const;
    /** Ends the call with the error text and a description of our own. */
    [[noreturn]] void refuse(const std::string& description, int result) const;

private:
    struct Failure
    {
        int result;
    };

    void record(int result) const;
    void unreadable() const;

    const Texts& m_texts;
    InterfaceRecord m_record;
};

} // namespace ovra::tessel

#endif

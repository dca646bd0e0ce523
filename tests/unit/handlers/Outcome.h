#ifndef UNIT_HANDLERS_OUTCOME_H
#define UNIT_HANDLERS_OUTCOME_H

#include "support/RecordingPlatform.h"

#include <tessel/Exception.h>

#include <functional>
#include <ostream>
#include <string>

/** How a call ended. */
struct Outcome
{
    enum Kind
    {
        RETURNED,
        FAILED,      ///< OvraAPIException itself
        ERROR_ANSWER ///< OvraAPIExceptionWithErrCode
    };

    Kind kind = RETURNED;
    std::string what;
    int code = 0;

    static Outcome returned() { return Outcome(); }
    static Outcome failed(const std::string& message) { return {FAILED, "Exception:" + message, 0}; }
    static Outcome errorAnswer(int code, const std::string& message)
    {
        return {ERROR_ANSWER, "Exception:" + message, code};
    }

    bool operator==(const Outcome& other) const
    {
        return kind == other.kind && what == other.what && code == other.code;
    }
};

inline void PrintTo(const Outcome& outcome, std::ostream* out)
{
    static const char* const KINDS[] = {"returned", "failed", "error answer"};
    *out << KINDS[outcome.kind] << " " << outcome.code << " \"" << outcome.what << "\"";
}

/** Runs a call; an exception of any other class passes through and fails the test. */
Outcome outcomeOf(const std::function<void()>& call);

/** Checks the product tag of all log calls, and the 11 arguments of all interface records. */
void expectWellFormedLogCalls(const RecordingPlatform& platform);

#endif

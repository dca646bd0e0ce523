#include "frame/Outcome.h"

#include "session/Reach.h"

#include <tessel/Exception.h>

#include <algorithm>
#include <array>

namespace tesselctl {
namespace {

/** The array's answers for an ID that it does not know. */
constexpr std::array<int, 1> UNKNOWN_ID = {1077950001};
/** Its answer to a request whose session is over or was never open. */
constexpr int NO_SESSION = 1077950102;

const std::string FRAME = "Exception:";
const std::string TRANSPORT_FAILURE = "url error or internet error ";
const std::string DESCRIPTION_MARK = ", description:";

std::string withoutFrame(const std::string& text)
{
    return text.compare(0, FRAME.size(), FRAME) == 0 ? text.substr(FRAME.size()) : text;
}

/** Splits "what happened operationName". */
std::pair<std::string, std::string> splitOperation(const std::string& text)
{
    const size_t blank = text.rfind(' ');
    if (blank == std::string::npos) {
        return {text, ""};
    }
    std::string what = text.substr(0, blank);
    what.erase(what.find_last_not_of(' ') + 1);
    return {what, text.substr(blank + 1)};
}

Outcome errorAnswer(const OvraAPIExceptionWithErrCode& error)
{
    auto [what, operation] = splitOperation(withoutFrame(error.what()));
    const size_t mark = what.find(DESCRIPTION_MARK);
    if (mark != std::string::npos) {
        what = what.substr(mark + DESCRIPTION_MARK.size());
    }
    what.erase(what.find_last_not_of(". ") + 1);
    Outcome outcome;
    outcome.hasArrayCode = true;
    outcome.arrayCode = error.getErrCode();
    outcome.exitCode = saysNotFound(outcome.arrayCode) ? ExitCode::NOT_FOUND : ExitCode::ARRAY_ERROR;
    outcome.message = (what.empty() ? "no description" : what) + " (error code " +
                      std::to_string(outcome.arrayCode) + " of the array, " + operation + ")";
    if (outcome.arrayCode == NO_SESSION) {
        outcome.message += "; the session is over: log in again";
    }
    return outcome;
}

Outcome sdkFailure(const OvraAPIException& error)
{
    const std::string text = withoutFrame(error.what());
    const auto [what, operation] = splitOperation(text);
    Outcome outcome;
    outcome.message = what + " (" + operation + "); see the run log in " + logDirectory();
    if (isTransportFailure(error)) {
        outcome.message =
            "the array did not answer " + operation +
            ", or not in a way that can be read; try 'tesselctl doctor --array ...', and see the run "
            "log in " +
            logDirectory();
    }
    return outcome;
}

} // namespace

bool isTransportFailure(const std::exception& error)
{
    return withoutFrame(error.what()).compare(0, TRANSPORT_FAILURE.size(), TRANSPORT_FAILURE) == 0;
}

bool saysNotFound(int arrayCode)
{
    return std::find(UNKNOWN_ID.begin(), UNKNOWN_ID.end(), arrayCode) != UNKNOWN_ID.end();
}

Outcome outcomeOf(const std::exception& error)
{
    if (const auto* answer = dynamic_cast<const OvraAPIExceptionWithErrCode*>(&error)) {
        return errorAnswer(*answer);
    }
    if (const auto* sdk = dynamic_cast<const OvraAPIException*>(&error)) {
        return sdkFailure(*sdk);
    }
    Outcome outcome;
    outcome.message = error.what();
    if (const auto* failure = dynamic_cast<const Failure*>(&error)) {
        outcome.exitCode = failure->code();
    }
    const auto* notFound = dynamic_cast<const NotFound*>(&error);
    if (notFound != nullptr && notFound->arrayCode() != 0) {
        outcome.hasArrayCode = true;
        outcome.arrayCode = notFound->arrayCode();
        outcome.message += " (error code " + std::to_string(outcome.arrayCode) + ")";
    }
    return outcome;
}

int tell(Printer& printer, const std::exception& error)
{
    const Outcome outcome = outcomeOf(error);
    const int exitCode = static_cast<int>(outcome.exitCode);
    printer.failure(outcome.message, exitCode, outcome.hasArrayCode ? &outcome.arrayCode : nullptr);
    return exitCode;
}

} // namespace tesselctl

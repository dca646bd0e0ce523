#include "frame/Outcome.h"

#include "session/Reach.h"

#include <tessel/Exception.h>

#include <string_view>

namespace tesselctl {
namespace {

constexpr std::string_view FRAME = "Exception:";
constexpr std::string_view TRANSPORT_FAILURE = "url error or internet error ";
constexpr std::string_view DESCRIPTION_MARK = ", description:";

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
    outcome.exitCode = ExitCode::ARRAY_ERROR;
    outcome.message = (what.empty() ? "no description" : what) + " (error code " +
                      std::to_string(outcome.arrayCode) + " of the array, " + operation + ")";
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
        outcome.hasArrayCode = failure->arrayCode() != 0;
        outcome.arrayCode = failure->arrayCode();
        const bool isTold = !outcome.hasArrayCode || outcome.exitCode == ExitCode::ARRAY_ERROR ||
                            outcome.message.find(std::to_string(outcome.arrayCode)) != std::string::npos;
        outcome.message += isTold ? "" : " (error code " + std::to_string(outcome.arrayCode) + ")";
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

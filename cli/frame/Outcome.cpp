#include "frame/Outcome.h"

#include "session/Advice.h"

#include <tessel/Exception.h>

namespace tesselctl {
namespace {

using SdkFailure = ovra::tessel::Failure;

/** The message without the name of the operation behind it. */
std::string withoutOperation(const SdkFailure& failure)
{
    std::string text = failure.message;
    const size_t name = text.rfind(failure.operation);
    if (name != std::string::npos && name + failure.operation.size() == text.size()) {
        text.resize(name);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

Outcome sdkOutcome(const SdkFailure& failure)
{
    Outcome outcome;
    outcome.hasArrayCode = failure.code != 0;
    if (outcome.hasArrayCode) {
        outcome.arrayCode = failure.code;
        outcome.exitCode = ExitCode::ARRAY_ERROR;
        outcome.message = refusalOf(failure);
    } else if (isTransportFailure(failure)) {
        outcome.message = "the array did not answer " + failure.operation + " in a way that can be read" +
                          (failure.transport.empty() ? "" : ": " + failure.transport) +
                          "; try 'tesselctl doctor --array ...', and see the run log in " + logDirectory();
    } else {
        outcome.message =
            withoutOperation(failure) + " (" + failure.operation + "); see the run log in " + logDirectory();
    }
    return outcome;
}

} // namespace

Outcome outcomeOf(const std::exception& error)
{
    if (const auto* sdk = dynamic_cast<const OvraAPIException*>(&error)) {
        return sdkOutcome(ovra::tessel::failureOf(*sdk));
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

#ifndef FRAME_OUTCOME_H
#define FRAME_OUTCOME_H

#include "kernel/Failure.h"
#include "output/Printer.h"

#include <exception>
#include <string>

namespace tesselctl {

/** What went wrong, in words for an administrator. */
struct Outcome
{
    std::string message;
    ExitCode exitCode = ExitCode::FAILURE;
    bool hasArrayCode = false;
    int arrayCode = 0;
};

/**
 * Reads any exception; those of the SDK lose their frame ("Exception:", the operation's name) and gain
 * advice.
 */
Outcome outcomeOf(const std::exception& error);

/** Prints the outcome and returns the exit code of the process. */
int tell(Printer& printer, const std::exception& error);

} // namespace tesselctl

#endif

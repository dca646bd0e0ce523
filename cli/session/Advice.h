#ifndef SESSION_ADVICE_H
#define SESSION_ADVICE_H

#include <tessel/Failure.h>

#include <string>

namespace tesselctl {

/** Whether there was no answer, or none that can be read. */
bool isTransportFailure(const ovra::tessel::Failure& failure);

/** Why the array did not answer, and what to do about it; empty where it did answer. */
std::string transportAdvice(const ovra::tessel::Failure& failure, const std::string& array);

/** The array's own words for a refusal, with its code. */
std::string refusalOf(const ovra::tessel::Failure& failure);

/** The directory that the SDK's run log is really written to; known once there is a session. */
std::string logDirectory();

} // namespace tesselctl

#endif

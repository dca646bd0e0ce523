#ifndef SESSION_ABSORB_H
#define SESSION_ABSORB_H

#include "observer/Observation.h"
#include "session/LastFailure.h"
#include "session/Log.h"

#include <tessel/Exception.h>

#include <algorithm>
#include <string>

namespace ovra::tessel {

/** What the warnings of an exchange say whose failures are not passed on; the caller's name follows each. */
struct Absorbed
{
    int harmless[2]; ///< the array's codes for "there was nothing to do"; 0: none
    const char* harmlessText;
    const char* errorAnswer; ///< any other code
    const char* otherwise;   ///< no answer
};

/** Runs an exchange and turns its failures into warnings: docs/oddities.md#groups-never-fail */
template <class Exchange>
void absorb(const Absorbed& texts, const std::string& callerName, Exchange exchange)
{
    const auto warn = [&](const char* text) { COMMLOG(OS_LOG_WARN, "%s%s", text, callerName.c_str()); };
    try {
        exchange();
    } catch (const OvraAPIExceptionWithErrCode& e) {
        const auto& codes = texts.harmless;
        const bool harmless =
            std::find(std::begin(codes), std::end(codes), e.getErrCode()) != std::end(codes);
        warn(harmless ? texts.harmlessText : texts.errorAnswer);
        if (!harmless) {
            keepFailure();
            Observation::absorbed();
        }
    } catch (const std::exception&) {
        warn(texts.otherwise);
        keepFailure();
        Observation::absorbed();
    }
}

} // namespace ovra::tessel

#endif

#ifndef SESSION_ABSORB_H
#define SESSION_ABSORB_H

#include "session/Log.h"

#include <tessel/Exception.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ovra::tessel {

/** What the warnings of an exchange say whose failures are not passed on; the caller's name follows each. */
struct Absorbed
{
    std::vector<int> harmless; ///< the array's codes for "there was nothing to do"
    std::string harmlessText;
    std::string errorAnswer; ///< any other code
    std::string otherwise;   ///< no answer
};

/** Runs an exchange and turns its failures into warnings. */
template <class Exchange>
void absorb(const Absorbed& texts, const std::string& callerName, Exchange exchange)
{
    const auto warn = [&](const std::string& text) {
        COMMLOG(OS_LOG_WARN, "%s%s", text.c_str(), callerName.c_str());
    };
    try {
        exchange();
    } catch (const OvraAPIExceptionWithErrCode& e) {
        const auto& codes = texts.harmless;
        const bool harmless = std::find(codes.begin(), codes.end(), e.getErrCode()) != codes.end();
        warn(harmless ? texts.harmlessText : texts.errorAnswer);
    } catch (const std::exception&) {
        warn(texts.otherwise);
    }
}

} // namespace ovra::tessel

#endif

#ifndef OVRA_REST_CALLINFORCE_H
#define OVRA_REST_CALLINFORCE_H

#include <ovra/rest/RestCall.h>

#include <curl/curl.h>

#include <optional>
#include <vector>

namespace ovra::rest {

/** What holds for the requests of this thread. */
class CallInForce
{
public:
    /** Of the call, or of the process. */
    static RestSettings settings();
    /** The member of each record of a list that is kept; null: all of them. */
    static const char* keptMember();

    CallInForce();

    /** 0; or why no request may go on: timed out, cancelled. */
    CURLcode verdict();

    /** Milliseconds to the end, at least 1; the limit given where that is nearer. */
    long within(long milliseconds) const;

    /** What ends a wait for the network. */
    std::vector<curl_waitfd>& descriptors() { return m_descriptors; }

private:
    std::chrono::steady_clock::time_point m_until = std::chrono::steady_clock::time_point::max();
    std::vector<curl_waitfd> m_descriptors; ///< empty, and nothing allocated, where nobody may cancel
};

} // namespace ovra::rest

#endif

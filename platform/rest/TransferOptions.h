#ifndef OVRA_REST_TRANSFEROPTIONS_H
#define OVRA_REST_TRANSFEROPTIONS_H

#include "CallInForce.h"
#include "HttpRequest.h"

#include <ovra/rest/RestSettings.h>

#include <chrono>
#include <curl/curl.h>
#include <new>
#include <stdexcept>
#include <vector>

namespace ovra::rest {

/** Sets an option of an easy handle; throws when that fails, since each of them matters. */
template <class Value>
void setOption(CURL* handle, CURLoption option, Value value)
{
    const CURLcode code = curl_easy_setopt(handle, option, value);
    if (code == CURLE_OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    if (code != CURLE_OK) {
        throw std::runtime_error("libcurl lacks an option");
    }
}

/** The request's header lines for libcurl, in one piece; they must outlive the transfer. */
class HeaderList
{
public:
    explicit HeaderList(const HttpRequest& request);
    HeaderList(const HeaderList&) = delete;
    HeaderList& operator=(const HeaderList&) = delete;

    curl_slist* get() { return m_items.data(); }

private:
    SecretText m_text; ///< the lines, each with its NUL
    std::vector<curl_slist> m_items;
};

/** Where a handle sends to. */
void setServer(CURL* handle, const ServerAddress& server);

/** What is sent. */
void setRequest(CURL* handle, const HttpRequest& request, curl_slist* headers);

/**
 * Takes what belongs to one request out of a handle that is kept. What the next one does not set anew is the
 * same for it. (curl_easy_reset may fail half way without a word, and spoil the handle.)
 */
void forgetRequest(CURL* handle);

/** How the server is proved to be the right one. */
void setTrust(CURL* handle, const RestSettings& settings);

/** Limits on protocols, redirects, proxies and descriptors: the same for every request. */
void setConfinement(CURL* handle);

/** Time-outs of a request that began that long ago, within those of the call that it belongs to. */
void setTimeouts(CURL* handle, const RestSettings& settings, std::chrono::milliseconds elapsed,
                 const CallInForce& call);

} // namespace ovra::rest

#endif

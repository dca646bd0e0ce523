#include "TransferOptions.h"

#include "HeaderLines.h"

#include <algorithm>
#include <cstring>
#include <sys/socket.h>

namespace ovra::rest {

namespace {

constexpr long ON = 1;
constexpr long OFF = 0;

const char* methodName(REST_REQUEST_MODE_E method)
{
    switch (method) {
    case REST_POST:
        return "POST";
    case REST_PUT:
        return "PUT";
    case REST_DELETE:
        return "DELETE";
    case REST_GET:
        break;
    }
    return "GET";
}

curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address)
{
    // The shell commands that the application runs must not inherit the connection.
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

void append(HeaderList& list, const char* line)
{
    curl_slist* extended = curl_slist_append(list.get(), line);
    if (extended == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(list.release());
    list.reset(extended);
}

/// No limit is a very long one: 0 would mean a default of libcurl's own for connecting.
long milliseconds(long seconds)
{
    constexpr long LONGEST = 1000000; // libcurl keeps the milliseconds in 32 bits
    return (seconds <= 0 ? LONGEST : std::min(seconds, LONGEST)) * 1000;
}

} // namespace

void WipeAndFreeList::operator()(curl_slist* list) const
{
    for (curl_slist* item = list; item != nullptr; item = item->next) {
        explicit_bzero(item->data, strlen(item->data));
    }
    curl_slist_free_all(list);
}

HeaderList makeHeaderList(const HttpRequest& request)
{
    HeaderList list;
    append(list, "Content-Type: application/json");
    append(list, "Expect:"); // a large body is sent at once
    for (const auto& [name, given] : request.headers) {
        const std::string_view value = withoutOuterBlanks(given);
        if (value.empty()) {
            continue;
        }
        append(list, SecretText(name).append(": ").append(value).c_str());
    }
    return list;
}

void setRequest(CURL* handle, const HttpRequest& request, curl_slist* headers)
{
    setOption(handle, CURLOPT_URL, (request.server.origin() + "/").c_str());
    setOption(handle, CURLOPT_PATH_AS_IS, ON);
    setOption(handle, CURLOPT_REQUEST_TARGET, request.target.c_str());
    if (request.body) {
        setOption(handle, CURLOPT_POST, ON);
        setOption(handle, CURLOPT_POSTFIELDS, request.body->c_str());
        setOption(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()));
    } else {
        setOption(handle, CURLOPT_HTTPGET, ON);
    }
    setOption(handle, CURLOPT_CUSTOMREQUEST, methodName(request.method));
    setOption(handle, CURLOPT_HTTPHEADER, headers);
}

void forgetRequest(CURL* handle)
{
    setOption(handle, CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
    setOption(handle, CURLOPT_POSTFIELDS, static_cast<const char*>(nullptr));
    setOption(handle, CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
}

void setTrust(CURL* handle, const RestSettings& settings)
{
    const bool pinned = !settings.pinnedKey.empty() && !settings.insecure;
    const bool pinAlone = pinned && settings.caFile.empty();
    const bool verified = !settings.insecure && !pinAlone;
    setOption(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    setOption(handle, CURLOPT_SSL_VERIFYPEER, verified ? ON : OFF);
    setOption(handle, CURLOPT_SSL_VERIFYHOST, verified ? 2L : OFF);
    if (pinned) {
        setOption(handle, CURLOPT_PINNEDPUBLICKEY, settings.pinnedKey.c_str());
    }
    if (settings.caFile.empty()) {
        return;
    }
    setOption(handle, CURLOPT_CAINFO, settings.caFile.c_str());
    // The system's own authorities are not trusted beside it.
    setOption(handle, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

void setConfinement(CURL* handle)
{
    setOption(handle, CURLOPT_PROTOCOLS_STR, "https");
    setOption(handle, CURLOPT_REDIR_PROTOCOLS_STR, "https");
    setOption(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    setOption(handle, CURLOPT_FOLLOWLOCATION, OFF);
    setOption(handle, CURLOPT_PROXY, "");
    setOption(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
    setOption(handle, CURLOPT_HTTP_CONTENT_DECODING, OFF);
    setOption(handle, CURLOPT_NOSIGNAL, ON);
    setOption(handle, CURLOPT_NOPROGRESS, ON);
    setOption(handle, CURLOPT_TCP_NODELAY, ON);
    setOption(handle, CURLOPT_TCP_KEEPALIVE, ON);
    setOption(handle, CURLOPT_OPENSOCKETFUNCTION, &openSocket);
}

void setTimeouts(CURL* handle, const RestSettings& settings, std::chrono::milliseconds elapsed,
                 const CallInForce& call)
{
    setOption(handle, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(settings.connectTimeoutSeconds));
    const long whole = milliseconds(settings.timeoutSeconds);
    setOption(handle, CURLOPT_TIMEOUT_MS,
              call.within(std::max(1L, whole - static_cast<long>(elapsed.count()))));
}

} // namespace ovra::rest

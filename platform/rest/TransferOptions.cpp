#include "TransferOptions.h"

#include "HeaderLines.h"

#include <algorithm>
#include <cstring>
#include <sys/socket.h>

namespace ovra::rest {

namespace {

constexpr long ON = 1;
constexpr long OFF = 0;

/** The name of a method that libcurl has no option for; null for the others. */
const char* nameOfUnusual(REST_REQUEST_MODE_E method)
{
    switch (method) {
    case REST_PUT:
        return "PUT";
    case REST_DELETE:
        return "DELETE";
    case REST_POST:
    case REST_GET:
        break;
    }
    return nullptr;
}

curl_socket_t openSocket(void*, curlsocktype, curl_sockaddr* address)
{
    // The shell commands that the application runs must not inherit the connection.
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

/// No limit is a very long one: 0 would mean a default of libcurl's own for connecting.
long milliseconds(long seconds)
{
    constexpr long LONGEST = 1000000; // libcurl keeps the milliseconds in 32 bits
    return (seconds <= 0 ? LONGEST : std::min(seconds, LONGEST)) * 1000;
}

} // namespace

HeaderList::HeaderList(const HttpRequest& request)
{
    constexpr std::string_view ALWAYS("Content-Type: application/json\0Expect:",
                                      38); // a large body is sent at once
    m_text.reserve(request.headBytes());
    m_text.append(ALWAYS).push_back('\0');
    for (const auto& [name, given] : request.headers) {
        const std::string_view value = withoutOuterBlanks(given);
        if (!value.empty()) {
            m_text.append(name).append(": ").append(value).push_back('\0');
        }
    }
    m_items.resize(static_cast<size_t>(std::count(m_text.begin(), m_text.end(), '\0')));
    char* line = m_text.data();
    for (curl_slist& item : m_items) {
        const bool isLast = &item == &m_items.back();
        item = {line, isLast ? nullptr : &item + 1};
        line += strlen(line) + 1;
    }
}

void setRequest(CURL* handle, const HttpRequest& request, curl_slist* headers)
{
    setOption(handle, CURLOPT_REQUEST_TARGET, request.target.c_str());
    if (request.body) {
        setOption(handle, CURLOPT_POST, ON);
        setOption(handle, CURLOPT_POSTFIELDS, request.body->c_str());
        setOption(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body->size()));
    } else {
        setOption(handle, CURLOPT_HTTPGET, ON);
    }
    setOption(handle, CURLOPT_CUSTOMREQUEST, nameOfUnusual(request.method));
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

void setServer(CURL* handle, const ServerAddress& server)
{
    setOption(handle, CURLOPT_URL, (server.origin() + "/").c_str());
    setOption(handle, CURLOPT_PATH_AS_IS, ON);
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

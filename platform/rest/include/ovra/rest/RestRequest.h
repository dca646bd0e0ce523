#ifndef OVRA_REST_RESTREQUEST_H
#define OVRA_REST_RESTREQUEST_H

/** @file
 * One request to the management interface, and what can come of it. */

#include <ovra/rest/RestResponse.h>

#include <memory>
#include <string>
#include <vector>

/** HTTP method of a request. */
enum REST_REQUEST_MODE_E
{
    REST_GET = 0,   ///< read; tried once more on a new connection when a reused one dies before the answer
    REST_POST = 1,  ///< create, log in, associate; sent once
    REST_PUT = 2,   ///< modify, associate; sent once
    REST_DELETE = 3 ///< delete, log out; sent once
};

/** The request headers that a caller may set itself. */
enum HTTP_HEADER_E
{
    HTTP_HEADER_COOKIE = 8, ///< sent as "Cookie"
    HTTP_HEADER_TOKEN = 47  ///< sent as "iBaseToken"
};

/**
 * What SendRequest returns beside 0 (an answer with an error object was received).
 *
 * Values 2 to 99 are libcurl's own CURLcode of the failed transfer, for example 6 (name not resolved),
 * 7 (cannot connect), 28 (timed out), 35 (TLS handshake), 42 (cancelled, see RestCall.h), 52 (closed without
 * an answer), 60 (certificate not trusted). 1 is never returned.
 */
enum REST_RESULT_E
{
    REST_OK = 0,                    ///< an answer with an error object was received
    REST_NO_SESSION = 10001,        ///< no session is registered under the session key
    REST_BAD_REQUEST = 10002,       ///< it cannot be sent as given: URL, header value, head above 64 KiB
    REST_ANSWER_UNREADABLE = 10003, ///< not JSON, or no error object in it
    REST_ANSWER_TOO_LARGE = 10004,  ///< headers above 256 KiB, body above 64 MiB or 4,000,000 values
    REST_INTERNAL_ERROR = 10005     ///< out of memory or another failure on this side
};

/**
 * One request to the array's management interface: HTTPS, JSON both ways.
 *
 * A request object is used by one thread, for one exchange, and is cheap: connections outlive it.
 * Nothing here throws but std::bad_alloc on a host that is out of memory.
 */
class __attribute__((visibility("default"))) RestRequest
{
public:
    /** A request without body and headers. */
    RestRequest();
    /** Overwrites body and headers; libcurl keeps what it sent until that memory is used again. */
    ~RestRequest();
    /** Not copied. */
    RestRequest(const RestRequest&) = delete;
    /** Not copied. */
    RestRequest& operator=(const RestRequest&) = delete;

    /**
     * Adds one member to the JSON body. Members are sent in the order in which they were added.
     * @tparam T one of std::string, int, bool, unsigned long, unsigned long long.
     * @param key name of the member.
     * @param value its value.
     */
    template <class T>
    void BodyAddProperty(const std::string& key, const T& value);

    /**
     * Sets a request header.
     * @param header which one.
     * @param value outer blanks are not sent; CR, LF or NUL in it, or more than 8 KiB, makes
     *        SendRequest return REST_BAD_REQUEST.
     */
    void HeaderAddProperty(const HTTP_HEADER_E& header, const std::string& value);

    /**
     * Sets the server for the form without a session key.
     * @param url scheme, host and port, e.g. "https://192.0.2.7:8088"; https only.
     */
    void SetServerUrl(const std::string& url);

    /**
     * Sends to the session registered under sessionKey (CUserManager): its server, its REST root and
     * device id in front of url, its token and cookie as headers.
     * @param sessionKey low 32 bits of the identity that the session was registered with.
     * @param url path relative to the session's REST root, beginning with "/".
     * @param mode HTTP method.
     * @param response filled with the answer.
     * @param headers receives the response header lines, names in their usual capitals ("Set-Cookie: ...").
     * @param flag accepted for the interface's sake; both values behave alike.
     * @return 0 when an answer with an error object was received, else a REST_RESULT_E or CURLcode value.
     */
    int SendRequest(const unsigned int& sessionKey, const std::string& url, const REST_REQUEST_MODE_E& mode,
                    RestResponse& response, std::vector<std::string>& headers, bool flag);

    /**
     * The same to the server of SetServerUrl, with only the headers that were added.
     * @param url absolute path, beginning with "/".
     * @param mode HTTP method.
     * @param response filled with the answer.
     * @param headers receives the response header lines.
     * @param flag accepted for the interface's sake.
     * @return as the form with a session key; never REST_NO_SESSION.
     */
    int SendRequest(const std::string& url, const REST_REQUEST_MODE_E& mode, RestResponse& response,
                    std::vector<std::string>& headers, bool flag);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/** @cond explicit instantiations */
extern template void RestRequest::BodyAddProperty<std::string>(const std::string&, const std::string&);
extern template void RestRequest::BodyAddProperty<int>(const std::string&, const int&);
extern template void RestRequest::BodyAddProperty<bool>(const std::string&, const bool&);
extern template void RestRequest::BodyAddProperty<unsigned long>(const std::string&, const unsigned long&);
extern template void RestRequest::BodyAddProperty<unsigned long long>(const std::string&,
                                                                      const unsigned long long&);
/** @endcond */

#endif

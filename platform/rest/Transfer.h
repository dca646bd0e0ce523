#ifndef OVRA_REST_TRANSFER_H
#define OVRA_REST_TRANSFER_H

#include "AnswerReader.h"
#include "CallInForce.h"
#include "ConnectionPool.h"
#include "HeaderLines.h"
#include "HttpRequest.h"

#include <ovra/rest/RestSettings.h>

#include <array>
#include <chrono>

namespace ovra::rest {

/** Sends one request and receives its answer. */
class Transfer
{
public:
    static constexpr size_t MOST_REQUEST_HEAD_BYTES = 64UL * 1024;
    static constexpr size_t MOST_HEADER_BYTES = 256UL * 1024;

    /** @param reader receives the answer's body. */
    Transfer(const HttpRequest& request, const RestSettings& settings, AnswerReader& reader);
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    /** @return 0 when a whole answer was received, else a CURLcode or REST_RESULT_E value. */
    int perform();

    HeaderLines& headers() { return m_headers; }
    /** The HTTP status of the answer. */
    long status() const { return m_status; }

private:
    enum class Reuse
    {
        Allowed,
        Forbidden
    };

    CURLcode attempt(Reuse reuse);
    CURLcode drive(Connection& connection);
    void forgetAnswer();
    void setCallbacks(CURL* handle);
    int resultOf(CURLcode code) const;
    bool diedUnanswered(CURLcode code) const;

    static int beforeRequest(void* self, char*, char*, int, int);
    static size_t receiveHeader(char* data, size_t size, size_t count, void* self);
    static size_t receiveBody(char* data, size_t size, size_t count, void* self);

    const HttpRequest& m_request;
    const RestSettings& m_settings;
    AnswerReader& m_reader;
    const std::chrono::steady_clock::time_point m_started = std::chrono::steady_clock::now();

    CallInForce m_call;
    HeaderLines m_headers;
    std::array<char, CURL_ERROR_SIZE> m_error{}; ///< libcurl's words for a failure
    long m_status = 0;
    size_t m_headerBytes = 0;
    unsigned m_sendings = 0; ///< how often libcurl wanted to send the request in this attempt
    bool m_reused = false;   ///< the attempt began on a connection that had served a request before
    Excess m_excess;         ///< of what was received
    bool m_outOfMemory = false;
};

} // namespace ovra::rest

#endif

#include "Transfer.h"

#include "FailureNote.h"
#include "SigpipeGuard.h"
#include "TransferOptions.h"

#include <cstring>
#include <optional>

namespace ovra::rest {

namespace {

std::string connectionKey(const ServerAddress& server, const RestSettings& settings)
{
    std::string key = server.origin();
    key.reserve(key.size() + settings.caFile.size() + settings.pinnedKey.size() + sizeof("\n\n\ninsecure"));
    key.append("\n").append(settings.caFile).append("\n").append(settings.pinnedKey);
    return key.append(settings.insecure ? "\ninsecure" : "\n");
}

/// Libcurl's own limit.
constexpr Excess TOO_LONG_A_LINE = {"bytes in a line of headers", 0, 100UL * 1024};

/// Bytes of a body as its headers tell; 0: they do not.
size_t announcedSize(CURL* handle)
{
    curl_off_t size = -1;
    curl_easy_getinfo(handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &size);
    return size > 0 ? static_cast<size_t>(size) : 0;
}

} // namespace

Transfer::Transfer(const HttpRequest& request, const RestSettings& settings, AnswerReader& reader)
    : m_request(request), m_settings(settings), m_reader(reader)
{
}

int Transfer::perform()
{
    if (m_request.headBytes() > MOST_REQUEST_HEAD_BYTES) {
        return REST_BAD_REQUEST; // libcurl would not send the end of it, and wait for an answer
    }
    CURLcode code = attempt(Reuse::Allowed);
    if (m_request.method == REST_GET && m_reused && diedUnanswered(code)) {
        forgetAnswer();
        code = attempt(Reuse::Forbidden);
    }
    if (m_outOfMemory) {
        throw std::bad_alloc();
    }
    const int result = resultOf(code);
    if (result == REST_ANSWER_TOO_LARGE) {
        noteTooLarge(m_excess.what != nullptr ? m_excess : TOO_LONG_A_LINE);
    }
    return result;
}

CURLcode Transfer::attempt(Reuse reuse)
{
    HeaderList headers(m_request);
    ConnectionPool& pool = ConnectionPool::instance();
    Connection connection = pool.take(connectionKey(m_request.server, m_settings));
    CURL* const handle = connection.handle.get();
    const auto elapsed = std::chrono::steady_clock::now() - m_started;
    if (!connection.isSet) { // once: the key tells the server and the trust
        setServer(handle, m_request.server);
        setTrust(handle, m_settings);
        setConfinement(handle);
        connection.isSet = true;
    }
    setRequest(handle, m_request, headers.get());
    setTimeouts(handle, m_settings, std::chrono::duration_cast<std::chrono::milliseconds>(elapsed), m_call);
    const bool fresh = reuse == Reuse::Forbidden || !isQuiet(connection);
    setOption(handle, CURLOPT_FRESH_CONNECT, fresh ? 1L : 0L);
    setCallbacks(handle);

    std::optional<SigpipeGuard> guard;
    if (fresh || !pool.sendsWithoutSignal()) {
        guard.emplace();
    }
    const CURLcode code = drive(connection);
    guard.reset();
    long newConnections = 0;
    curl_easy_getinfo(handle, CURLINFO_NUM_CONNECTS, &newConnections);
    m_reused = m_sendings > 1 || newConnections == 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &m_status);
    if (code != CURLE_OK) {
        noteTransfer(handle, code, m_sendings > 0, m_error.data(), m_settings);
    }
    if (m_reader.excess().what != nullptr) {
        m_excess = m_reader.excess();
        m_excess.size = m_excess.size != 0 ? m_excess.size : announcedSize(handle);
    }
    forgetRequest(handle);
    if (code == CURLE_OK) {
        pool.giveBack(std::move(connection));
    }
    return code;
}

/// What curl_easy_perform does, but that a wait for the network ends when the call does.
CURLcode Transfer::drive(Connection& connection)
{
    constexpr int LONGEST_WAIT_MS = 1000;
    CURLM* const multi = connection.multi.get();
    CURLMcode failure = curl_multi_add_handle(multi, connection.handle.get());
    CURLcode code = m_call.verdict();
    for (int running = 1; failure == CURLM_OK && code == CURLE_OK;) {
        failure = curl_multi_perform(multi, &running);
        if (running == 0 || failure != CURLM_OK) {
            break;
        }
        std::vector<curl_waitfd>& ends = m_call.descriptors();
        failure =
            curl_multi_poll(multi, ends.data(), static_cast<unsigned>(ends.size()), LONGEST_WAIT_MS, nullptr);
        code = m_call.verdict();
    }
    int left = 0;
    const CURLMsg* const message = curl_multi_info_read(multi, &left);
    if (message != nullptr && message->msg == CURLMSG_DONE) {
        code = message->data.result;
    } else if (code == CURLE_OK) {
        code = failure == CURLM_OUT_OF_MEMORY ? CURLE_OUT_OF_MEMORY : CURLE_FAILED_INIT;
    }
    curl_easy_getinfo(connection.handle.get(), CURLINFO_ACTIVESOCKET, &connection.socket);
    curl_multi_remove_handle(multi, connection.handle.get());
    return code;
}

void Transfer::forgetAnswer()
{
    m_headers = HeaderLines();
    m_reader.clear();
    m_headerBytes = 0;
    m_sendings = 0;
    m_error.front() = '\0';
    failureNote() = RestFailure{};
}

void Transfer::setCallbacks(CURL* handle)
{
    setOption(handle, CURLOPT_ERRORBUFFER, m_error.data());
    setOption(handle, CURLOPT_PREREQFUNCTION, &Transfer::beforeRequest);
    setOption(handle, CURLOPT_PREREQDATA, static_cast<void*>(this));
    setOption(handle, CURLOPT_HEADERFUNCTION, &Transfer::receiveHeader);
    setOption(handle, CURLOPT_HEADERDATA, static_cast<void*>(this));
    setOption(handle, CURLOPT_WRITEFUNCTION, &Transfer::receiveBody);
    setOption(handle, CURLOPT_WRITEDATA, static_cast<void*>(this));
}

bool Transfer::diedUnanswered(CURLcode code) const
{
    if (m_sendings > 1) {
        return true;
    }
    const bool died = code == CURLE_SEND_ERROR || code == CURLE_RECV_ERROR || code == CURLE_GOT_NOTHING;
    return died && m_headerBytes == 0;
}

int Transfer::resultOf(CURLcode code) const
{
    if (code == CURLE_OK) {
        return REST_OK;
    }
    // A header line without end meets libcurl's own limit, which it reports as a lack of memory before 8.6.
    constexpr int CURLE_TOO_LARGE_OF_8_6 = 100;
    const bool longLine = m_sendings > 0 && (code == CURLE_OUT_OF_MEMORY || code == CURLE_TOO_LARGE_OF_8_6);
    if (m_excess.what != nullptr || longLine) {
        return REST_ANSWER_TOO_LARGE;
    }
    if (m_sendings > 1) {
        return CURLE_GOT_NOTHING; // what happened before libcurl wanted to send again
    }
    const bool isNoHttp =
        code == CURLE_WEIRD_SERVER_REPLY || code == CURLE_UNSUPPORTED_PROTOCOL; // of 8, and before
    if (isNoHttp && m_sendings > 0) {
        return REST_ANSWER_UNREADABLE;
    }
    if (code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_URL_MALFORMAT) {
        return REST_BAD_REQUEST;
    }
    return code > 99 ? static_cast<int>(REST_INTERNAL_ERROR) : static_cast<int>(code);
}

int Transfer::beforeRequest(void* self, char*, char*, int, int)
{
    failureNote().phase = REST_SENT; // whatever ends it from now on
    // libcurl sends any method again when a connection that it reuses dies: only the first time is allowed.
    return ++static_cast<Transfer*>(self)->m_sendings == 1 ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

size_t Transfer::receiveHeader(char* data, size_t size, size_t count, void* self)
{
    auto* transfer = static_cast<Transfer*>(self);
    const size_t length = size * count;
    transfer->m_headerBytes += length;
    if (transfer->m_headerBytes > MOST_HEADER_BYTES) {
        transfer->m_excess = {"bytes of headers", 0, MOST_HEADER_BYTES};
        return 0;
    }
    try {
        transfer->m_headers.add({data, length});
    } catch (const std::bad_alloc&) {
        transfer->m_outOfMemory = true;
        return 0;
    }
    return length;
}

size_t Transfer::receiveBody(char* data, size_t size, size_t count, void* self)
{
    auto* transfer = static_cast<Transfer*>(self);
    const size_t length = size * count;
    try {
        return transfer->m_reader.add({data, length}) ? length : 0;
    } catch (const std::bad_alloc&) {
        transfer->m_outOfMemory = true;
        return 0;
    }
}

} // namespace ovra::rest

#include "FailureNote.h"

#include <ovra/log/LogAPI.h>
#include <ovra/rest/RestRequest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace ovra::rest {

namespace {

thread_local RestFailure t_failure = {};

void setText(const std::string& text)
{
    const size_t length = std::min(text.size(), sizeof(t_failure.text) - 1);
    memcpy(t_failure.text, text.data(), length);
    t_failure.text[length] = '\0';
}

std::string reasonOf(int error)
{
    return std::system_category().message(error);
}

/// "error:0A00010B:SSL routines::wrong version number" holds the number. Words before it may end in "error:"
/// too.
unsigned long tlsErrorIn(std::string_view text)
{
    constexpr std::string_view MARK = "error:";
    constexpr int HEXADECIMAL = 16;
    const size_t found = text.rfind(MARK);
    return found == text.npos ? 0 : strtoul(text.data() + found + MARK.size(), nullptr, HEXADECIMAL);
}

std::string caFileProblem(const std::string& file)
{
    const bool isReadable = access(file.c_str(), R_OK) == 0;
    const int error = errno;
    return "the CA file " + file +
           (isReadable ? std::string(" holds no certificate that can be read") : ": " + reasonOf(error));
}

/// What is not libcurl's to tell.
const char* ownReason(int result)
{
    switch (result) {
    case REST_NO_SESSION:
        return "no session is open";
    case REST_BAD_REQUEST:
        return "the request cannot be sent as it is given";
    case REST_INTERNAL_ERROR:
        return "a failure on this side";
    case CURLE_ABORTED_BY_CALLBACK:
        return "the call was cancelled";
    case CURLE_OPERATION_TIMEDOUT:
        return "the time of the call is over";
    default:
        return curl_easy_strerror(static_cast<CURLcode>(result));
    }
}

} // namespace

RestFailure& failureNote() noexcept
{
    return t_failure;
}

void noteTransfer(CURL* handle, CURLcode code, bool wasSent, const char* text, const RestSettings& settings)
{
    long error = 0;
    curl_off_t connecting = 0;
    curl_easy_getinfo(handle, CURLINFO_SSL_VERIFYRESULT, &t_failure.verifyResult);
    curl_easy_getinfo(handle, CURLINFO_OS_ERRNO, &error);
    curl_easy_getinfo(handle, CURLINFO_CONNECT_TIME_T, &connecting);
    t_failure.result = static_cast<int>(code);
    t_failure.systemError = static_cast<int>(error);
    t_failure.tlsError = tlsErrorIn(text);
    t_failure.phase = wasSent ? REST_SENT : connecting > 0 ? REST_CONNECTED : REST_NOT_CONNECTED;
    if (code == CURLE_SSL_CACERT_BADFILE) {
        setText(caFileProblem(settings.caFile));
        return;
    }
    std::string told = *text == '\0' ? ownReason(code) : text;
    if (code == CURLE_COULDNT_CONNECT && error != 0 &&
        told.find(reasonOf(t_failure.systemError)) == told.npos) {
        told += ": " + reasonOf(t_failure.systemError); // libcurl 8 leaves it out
    }
    setText(told);
}

void noteUnreadable(long status)
{
    setText("the answer is not JSON with an error object, its HTTP status is " + std::to_string(status));
}

void noteTooLarge(const Excess& excess)
{
    const std::string most = std::to_string(excess.most);
    setText(excess.size == 0 ? "the answer is too large: more than " + most + " " + excess.what
                             : "the answer is too large: " + std::to_string(excess.size) + " " + excess.what +
                                   ", at most " + most + " can be kept");
    t_failure.result = REST_ANSWER_TOO_LARGE;
}

void noteResult(int result, const std::optional<ServerAddress>& server) noexcept
{
    // Libcurl's words are for its own code alone: it takes a limit of ours for an output that is full.
    const bool isTold =
        t_failure.text[0] != '\0' && (t_failure.result == result || result == REST_ANSWER_UNREADABLE);
    t_failure.result = result;
    if (result == REST_OK) {
        return;
    }
    try {
        if (!isTold) {
            setText(ownReason(result));
        }
        const std::string line = "no answer from " + (server ? server->origin() : "the array") + ": " +
                                 t_failure.text + " (" + std::to_string(result) + ")";
        Log_Run_Warn("Ovra-Rest-API", line.c_str());
    } catch (...) { // out of memory: the line is lost, the result is not
    }
}

} // namespace ovra::rest

const RestFailure& RestLastFailure() noexcept
{
    return ovra::rest::failureNote();
}

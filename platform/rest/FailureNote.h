#ifndef OVRA_REST_FAILURENOTE_H
#define OVRA_REST_FAILURENOTE_H

#include "Excess.h"
#include "ServerAddress.h"

#include <ovra/rest/RestFailure.h>
#include <ovra/rest/RestSettings.h>

#include <curl/curl.h>

#include <optional>

namespace ovra::rest {

/** The failure of this thread's last request, to be filled. */
RestFailure& failureNote() noexcept;

/** Takes over what libcurl knows of a transfer that failed. */
void noteTransfer(CURL* handle, CURLcode code, bool wasSent, const char* text, const RestSettings& settings);

/** Notes an answer that is no JSON, or has no error object, by its HTTP status. */
void noteUnreadable(long status);

/** Notes what is too large of an answer; its request ends with REST_ANSWER_TOO_LARGE. */
void noteTooLarge(const Excess& excess);

/** Notes how a request ended; of a failure writes the one line of the run log. */
void noteResult(int result, const std::optional<ServerAddress>& server) noexcept;

} // namespace ovra::rest

#endif

#include "session/FailureTable.h"

#include "session/InterfaceRecord.h"
#include "session/RestAdditions.h"

#include <ovra/rest/RestRequest.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace ovra::tessel {

namespace {

using Kind = FailureKind;
using Reason = FailureReason;

constexpr bool AGAIN = true;

enum class Detail
{
    ANY,
    VERIFY, ///< OpenSSL's verdict on the certificate
    SYSTEM, ///< errno
    TLS,    ///< whether OpenSSL has told an error of the protocol
    TOLD    ///< none of these fits
};

/** A result of libcurl or of the REST library, and what it means; the first row that fits counts. */
struct Row
{
    int result;
    Detail detail;
    long value;
    Kind kind;
    Reason reason;
    bool canTryAgain;
};

// The numbers of libcurl's CURLcode and OpenSSL's X509_V_ERR, by which the REST library tells them.
constexpr Row ROWS[] = {
    {RESULT_BAD_ARGUMENT, Detail::ANY, 0, Kind::ARGUMENT, Reason::OTHER, !AGAIN},
    {REST_NO_SESSION, Detail::ANY, 0, Kind::NOT_LOGGED_IN, Reason::OTHER, !AGAIN},
    {REST_BAD_REQUEST, Detail::ANY, 0, Kind::ARGUMENT, Reason::OTHER, !AGAIN},
    {REST_ANSWER_UNREADABLE, Detail::ANY, 0, Kind::UNREADABLE_ANSWER, Reason::OTHER, AGAIN},
    {REST_ANSWER_TOO_LARGE, Detail::ANY, 0, Kind::UNREADABLE_ANSWER, Reason::TOO_LARGE, !AGAIN},
    {REST_INTERNAL_ERROR, Detail::ANY, 0, Kind::HOST, Reason::OTHER, AGAIN},
    {2, Detail::ANY, 0, Kind::HOST, Reason::OTHER, !AGAIN}, // libcurl cannot be started
    {27, Detail::ANY, 0, Kind::HOST, Reason::OTHER, AGAIN}, // out of memory
    {7, Detail::SYSTEM, ECONNREFUSED, Kind::NOT_REACHABLE, Reason::NOTHING_LISTENS, AGAIN},
    {7, Detail::SYSTEM, EHOSTUNREACH, Kind::NOT_REACHABLE, Reason::NO_ROUTE, AGAIN},
    {7, Detail::SYSTEM, ENETUNREACH, Kind::NOT_REACHABLE, Reason::NO_ROUTE, AGAIN},
    {7, Detail::SYSTEM, ETIMEDOUT, Kind::TIMED_OUT, Reason::SILENCE, AGAIN},
    {8, Detail::ANY, 0, Kind::UNREADABLE_ANSWER, Reason::OTHER, AGAIN}, // no HTTP
    {28, Detail::ANY, 0, Kind::TIMED_OUT, Reason::SILENCE, AGAIN},
    {35, Detail::TLS, 0, Kind::NOT_REACHABLE, Reason::NO_TLS, !AGAIN},
    {35, Detail::TOLD, 0, Kind::NOT_REACHABLE, Reason::CONNECTION_ENDED, AGAIN},
    {18, Detail::ANY, 0, Kind::NOT_REACHABLE, Reason::CONNECTION_ENDED, AGAIN}, // within the answer
    {52, Detail::ANY, 0, Kind::NOT_REACHABLE, Reason::CONNECTION_ENDED, AGAIN}, // before it
    {55, Detail::ANY, 0, Kind::NOT_REACHABLE, Reason::CONNECTION_ENDED, AGAIN}, // while sending
    {56, Detail::ANY, 0, Kind::NOT_REACHABLE, Reason::CONNECTION_ENDED, AGAIN}, // while receiving
    {42, Detail::ANY, 0, Kind::CANCELLED, Reason::OTHER, AGAIN},
    {60, Detail::VERIFY, 10, Kind::NOT_TRUSTED, Reason::CERTIFICATE_EXPIRED, !AGAIN},
    {60, Detail::VERIFY, 9, Kind::NOT_TRUSTED, Reason::CERTIFICATE_NOT_YET_VALID, !AGAIN},
    {60, Detail::VERIFY, 0, Kind::NOT_TRUSTED, Reason::CERTIFICATE_NAME, !AGAIN}, // all else was right
    {60, Detail::VERIFY, 1, Kind::NOT_TRUSTED, Reason::CERTIFICATE_NAME, !AGAIN}, // the chain was not asked
    {60, Detail::TOLD, 0, Kind::NOT_TRUSTED, Reason::CERTIFICATE_AUTHORITY, !AGAIN},
    {60, Detail::ANY, 0, Kind::NOT_TRUSTED, Reason::OTHER, !AGAIN},
    {77, Detail::ANY, 0, Kind::NOT_TRUSTED, Reason::CA_FILE, !AGAIN},
    {90, Detail::ANY, 0, Kind::NOT_TRUSTED, Reason::CERTIFICATE_PIN, !AGAIN},
};

/** "unexpected eof": the connection ended, whatever was spoken on it. */
constexpr unsigned long TLS_EOF = 0x0A000126;

bool fits(const Row& row, const RestFailure& told)
{
    switch (row.detail) {
    case Detail::VERIFY:
        return told.verifyResult == row.value;
    case Detail::SYSTEM:
        return told.systemError == row.value;
    case Detail::TLS:
        return told.tlsError != 0 && told.tlsError != TLS_EOF;
    case Detail::TOLD:
    case Detail::ANY:
        break;
    }
    return true;
}

} // namespace

FailureClass classOf(int result) noexcept
{
    static const RestFailure nothing = {};
    const RestFailure& last = RestLastFailure != nullptr ? RestLastFailure() : nothing;
    const bool isTold = last.result == result;
    const Row* const row = std::find_if(std::begin(ROWS), std::end(ROWS), [&](const Row& each) {
        return each.result == result && (each.detail == Detail::ANY || (isTold && fits(each, last)));
    });
    FailureClass found =
        row != std::end(ROWS)
            ? FailureClass{row->kind, row->reason, row->canTryAgain, row->kind == Kind::UNREADABLE_ANSWER, ""}
            : FailureClass{Kind::NOT_REACHABLE, Reason::OTHER, AGAIN, false, ""};
    if (isTold) {
        found.mayBeDone = last.phase == REST_SENT;
        found.transport = last.text;
    }
    return found;
}

} // namespace ovra::tessel

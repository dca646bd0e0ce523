#include "session/Advice.h"

#include <ovra/log/LogAPI.h>

#include <algorithm>
#include <iterator>

namespace tesselctl {
namespace {

using ovra::tessel::Failure;
using ovra::tessel::FailureKind;
using ovra::tessel::FailureReason;

/** What is said: what, the words of the transport, what to do; "%" is the array, "@" the operation. */
struct Advice
{
    FailureKind kind;
    FailureReason reason; ///< OTHER: of any other
    const char* what;
    const char* todo;
};

constexpr Advice ADVICES[] = {
    {FailureKind::NOT_REACHABLE, FailureReason::NOTHING_LISTENS,
     "the array % cannot be reached, nothing listens there",
     "check the address and the port, and that the array is up"},
    {FailureKind::NOT_REACHABLE, FailureReason::NO_ROUTE, "the array % cannot be reached",
     "check the address and the network"},
    {FailureKind::NOT_REACHABLE, FailureReason::NO_TLS, "what listens on % does not speak TLS 1.2 or later",
     "check that this is the port of the management interface"},
    {FailureKind::NOT_REACHABLE, FailureReason::CONNECTION_ENDED, "% ended the connection without an answer",
     "check that this is the port of the management interface, and look at the array"},
    {FailureKind::NOT_REACHABLE, FailureReason::OTHER, "the array % cannot be reached",
     "check the address, the port and the network"},
    {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_EXPIRED,
     "the array % is not trusted, its certificate has expired",
     "renew it on the array, check this host's clock, or trust its key with --pin: see 'tesselctl "
     "fingerprint %'"},
    {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_NOT_YET_VALID,
     "the array % is not trusted, its certificate is not valid yet",
     "check the clocks of this host and of the array, or trust its key with --pin: see 'tesselctl "
     "fingerprint %'"},
    {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_NAME,
     "the array % is not trusted, its certificate is for another name or address",
     "check the address, give the array a certificate that names it, or trust its key with --pin: see "
     "'tesselctl "
     "fingerprint %'"},
    {FailureKind::NOT_TRUSTED, FailureReason::CERTIFICATE_PIN,
     "the array % is not trusted, its public key is not the pinned one",
     "it has a new key, or it is not the array: compare what 'tesselctl fingerprint %' shows with what the "
     "array "
     "itself does before you change --pin"},
    {FailureKind::NOT_TRUSTED, FailureReason::CA_FILE, "the array % cannot be proved to be trusted",
     "name a file with certificates in PEM form with --ca-file"},
    {FailureKind::NOT_TRUSTED, FailureReason::OTHER,
     "the array % is not trusted, no authority that this host trusts has signed its certificate",
     "look at it with 'tesselctl fingerprint %' and trust it with --pin or --ca-file"},
    {FailureKind::UNREADABLE_ANSWER, FailureReason::OTHER, "% did not answer @ as an array does",
     "check that this is the port of the management interface; an array that starts may answer so for a "
     "while"},
    {FailureKind::TIMED_OUT, FailureReason::OTHER, "the array % does not answer in time",
     "check the address and what filters the network between, or wait longer with --connect-timeout and "
     "--timeout"},
};

/** The text with another one where a mark is. */
std::string filled(std::string text, char mark, const std::string& with)
{
    const size_t place = text.find(mark);
    return place == std::string::npos ? text : text.replace(place, 1, with);
}

} // namespace

bool isTransportFailure(const Failure& failure)
{
    constexpr FailureKind KINDS[] = {FailureKind::NOT_LOGGED_IN, FailureKind::NOT_REACHABLE,
                                     FailureKind::NOT_TRUSTED, FailureKind::TIMED_OUT,
                                     FailureKind::UNREADABLE_ANSWER};
    return std::find(std::begin(KINDS), std::end(KINDS), failure.kind) != std::end(KINDS);
}

std::string transportAdvice(const Failure& failure, const std::string& array)
{
    const auto* const found = std::find_if(std::begin(ADVICES), std::end(ADVICES), [&](const Advice& each) {
        return each.kind == failure.kind &&
               (each.reason == failure.reason || each.reason == FailureReason::OTHER);
    });
    if (found == std::end(ADVICES)) {
        return "";
    }
    return filled(filled(found->what, '%', array), '@', failure.operation) +
           (failure.transport.empty() ? "" : ": " + failure.transport) + "; " +
           filled(found->todo, '%', array);
}

std::string refusalOf(const Failure& failure)
{
    std::string words = failure.description;
    words.erase(words.find_last_not_of(". ") + 1);
    return (words.empty() ? "no description" : words) + " (error code " + std::to_string(failure.code) +
           " of the array, " + failure.operation + ")";
}

std::string logDirectory()
{
    const std::string directory = Log_Directory();
    return directory.empty() ? "(none: no directory for it can be written)" : directory;
}

} // namespace tesselctl

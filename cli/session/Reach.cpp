#include "session/Reach.h"

#include "network/Probe.h"

#include "session/Secret.h"
#include "text/Numbers.h"
#include <ovra/log/LogAPI.h>

#include <climits>
#include <cstdlib>

namespace tesselctl {
namespace {

long connectTimeout()
{
    const std::string text = environment("OVRA_REST_CONNECT_TIMEOUT_S");
    const long seconds = std::strtol(text.c_str(), nullptr, 10);
    return seconds > 0 ? seconds : 30;
}

bool isPinned(const std::string& pins, const std::string& pin)
{
    return (";" + pins + ";").find(";" + pin + ";") != std::string::npos;
}

std::string trustAdvice(const ArrayAddress& address, const std::string& why)
{
    return "the array " + address.text() + " is not trusted: " + why +
           "; look at its certificate with 'tesselctl fingerprint " + address.text() +
           "' and trust it with --pin or --ca-file";
}

/** Empty when the certificate is trusted as the REST library is told to trust. */
std::string trustProblem(const Probe& found)
{
    const std::string pins = environment("OVRA_REST_PINNED_KEY");
    if (environment("OVRA_REST_INSECURE") == "1") {
        return "";
    }
    if (!pins.empty() && !isPinned(pins, found.certificate.pin)) {
        return "its public key is not the pinned one";
    }
    const bool pinSuffices = !pins.empty() && environment("OVRA_REST_CA_FILE").empty();
    return pinSuffices ? "" : found.trustProblem;
}

} // namespace

Reach tryReach(const ArrayAddress& address)
{
    const Probe found = probe(address, environment("OVRA_REST_CA_FILE"), connectTimeout());
    if (!found.connected) {
        return {false, "the array " + address.text() + " cannot be reached: " + found.reason +
                           "; check the address, the port and the network"};
    }
    if (!found.spoke) {
        return {false, "what listens on " + address.text() + " does not speak TLS 1.2 or later: " +
                           found.reason + "; check that this is the port of the management interface"};
    }
    const std::string problem = trustProblem(found);
    return problem.empty() ? Reach{true, ""} : Reach{false, trustAdvice(address, problem)};
}

std::string logDirectory()
{
    const std::string directory = Log_Directory();
    return directory.empty() ? "(none: no directory for it can be written)" : directory;
}

} // namespace tesselctl

#include "session/Session.h"

#include "kernel/Failure.h"
#include "text/Numbers.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr uint64_t LONGEST_TIMEOUT = 86400;

void checkPin(const std::string& pin)
{
    if (pin.rfind("sha256//", 0) != 0) {
        throw UsageError(
            "--pin takes a key such as sha256//AbC...=; tesselctl fingerprint prints the array's");
    }
}

/** The option as the REST library's own environment variable, where the command line gives it. */
void handOver(const Values& values, const char* option, const char* variable)
{
    if (values.has(option)) {
        setenv(variable, values.text(option).c_str(), 1);
    }
}

} // namespace

std::vector<Option> connectionOptions()
{
    return {
        {"--array", "IP[:PORT]", "the array's management interface; TESSEL_ARRAY; port 8088 unless given"},
        {"--user", "NAME", "user to log in as; TESSEL_USER"},
        {"--password-file",
         "FILE",
         "its first line is the password; else TESSEL_PASSWORD, else a question",
         false,
         {},
         true},
        {"--scope",
         "SCOPE",
         "where the array keeps the user: local (default) or domain",
         false,
         {"local", "domain"}},
        {"--device-id", "ID", "adopt the open session with this device ID instead of logging in"},
        {"--token-file",
         "FILE",
         "its first line is the token of that session; else TESSEL_TOKEN",
         false,
         {},
         true},
        {"--cookie-file",
         "FILE",
         "its first line is the cookie of that session; else TESSEL_COOKIE",
         false,
         {},
         true},
        {"--ca-file", "FILE", "PEM bundle of the certificates to trust", false, {}, true},
        {"--pin", "KEY", "sha256//... of the array's public key, as tesselctl fingerprint prints it"},
        {"--insecure", "", "do not verify the array at all: anybody on the way can read the password"},
        {"--connect-timeout", "SECONDS", "longest wait for a connection (30)"},
        {"--timeout", "SECONDS", "longest wait for one answer (300)"},
    };
}

void applyTransportOptions(const Values& values)
{
    if (values.has("--ca-file") && access(values.text("--ca-file").c_str(), R_OK) != 0) {
        throw UsageError("--ca-file " + values.text("--ca-file") + ": " + std::strerror(errno));
    }
    if (values.has("--pin")) {
        checkPin(values.text("--pin"));
    }
    for (const char* option : {"--connect-timeout", "--timeout"}) {
        if (values.has(option)) {
            parseNumber(option, values.text(option), 1, LONGEST_TIMEOUT);
        }
    }
    handOver(values, "--ca-file", "OVRA_REST_CA_FILE");
    handOver(values, "--pin", "OVRA_REST_PINNED_KEY");
    handOver(values, "--connect-timeout", "OVRA_REST_CONNECT_TIMEOUT_S");
    handOver(values, "--timeout", "OVRA_REST_TIMEOUT_S");
    if (values.has("--insecure")) {
        setenv("OVRA_REST_INSECURE", "1", 1);
    }
}

} // namespace tesselctl

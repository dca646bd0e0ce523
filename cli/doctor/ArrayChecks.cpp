#include "doctor/Finding.h"

#include "disk/HostFiles.h"
#include "frame/Outcome.h"
#include "session/Advice.h"
#include "session/Secret.h"

#include <ovra/log/LogAPI.h>

#include <openssl/bio.h>
#include <openssl/pem.h>

#include <cstring>
#include <memory>
#include <unistd.h>

namespace tesselctl {
namespace {

bool holdsCertificate(const std::string& file)
{
    const std::unique_ptr<BIO, decltype(&BIO_free)> input(BIO_new_file(file.c_str(), "r"), BIO_free);
    if (!input) {
        return false;
    }
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(
        PEM_read_bio_X509(input.get(), nullptr, nullptr, nullptr), X509_free);
    return certificate != nullptr;
}

using Manager = std::unique_ptr<CDeviceManager, decltype(&CDeviceManager::releaseInstance)>;

Manager makeManager()
{
    return {CDeviceManager::getInstance(0, 0), CDeviceManager::releaseInstance};
}

/** Asks for what needs a session, without one: an array that refuses it is reached. */
void askWithoutSession(const ArrayAddress& address)
{
    const Manager manager = makeManager();
    manager->useConnection(address.ip, address.port, "none", "none", "none");
    manager->keepAlive();
}

} // namespace

Findings checkLogs(Context&)
{
    // Logging starts with a device manager, and finds its directory then.
    const Manager manager = makeManager();
    const std::string directory = Log_Directory();
    if (directory.empty()) {
        return {{Verdict::WARNING, "log directory", "none can be written",
                 "name one in Tessel_API.ini beside the log library"}};
    }
    return {{Verdict::OK, "log directory", directory, ""}};
}

Findings checkTrust(Context&)
{
    const std::string file = environment("OVRA_REST_CA_FILE");
    if (environment("OVRA_REST_INSECURE") == "1") {
        return {{Verdict::WARNING, "trust", "--insecure: the array is not verified",
                 "use --pin or --ca-file: anybody on the way can read the password"}};
    }
    if (file.empty()) {
        const bool pinned = !environment("OVRA_REST_PINNED_KEY").empty();
        return {{Verdict::OK, "trust", pinned ? "a pinned key" : "the certificates of this system", ""}};
    }
    if (!holdsCertificate(file)) {
        return {{Verdict::FAILURE, "CA file", file + " holds no certificate that can be read",
                 "name a file with certificates in PEM form"}};
    }
    return {{Verdict::OK, "CA file", file, ""}};
}

Findings checkArray(Context& context)
{
    const std::string array = context.text("--array", environment("TESSEL_ARRAY"));
    if (array.empty()) {
        return {};
    }
    const ArrayAddress address = parseArrayAddress("--array", array);
    const std::string name = "array " + address.text();
    ovra::tessel::clearFailure();
    Finding session = {Verdict::OK, "session", "open", ""};
    try {
        if (!context.session().keepAlive()) {
            session = {Verdict::FAILURE, "session", "the keep-alive failed",
                       "see the run log in " + logDirectory()};
        }
    } catch (const std::exception& error) {
        session = {Verdict::FAILURE, "session", "none", outcomeOf(error).message};
    }
    if (session.verdict != Verdict::OK && !ovra::tessel::lastFailure()) { // nothing was sent
        askWithoutSession(address);
    }
    const auto failure = ovra::tessel::lastFailure();
    const std::string advice = transportAdvice(failure, address.text());
    if (!advice.empty()) {
        return {{Verdict::FAILURE, name, "not reached", advice}};
    }
    return {{Verdict::OK, name, "reached and trusted", ""}, session};
}

} // namespace tesselctl

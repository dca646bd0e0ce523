#include "frame/Context.h"
#include "network/Probe.h"
#include "session/Secret.h"
#include "text/Display.h"
#include "text/Numbers.h"
#include "text/Words.h"

namespace tesselctl {
namespace {

Json::Value jsonOf(const Certificate& certificate, const Probe& found, const std::string& array)
{
    Json::Value json(Json::objectValue);
    json["array"] = array;
    json["subject"] = validUtf8(certificate.subject);
    json["issuer"] = validUtf8(certificate.issuer);
    json["selfSigned"] = certificate.selfSigned;
    json["names"] = Json::Value(Json::arrayValue);
    for (const auto& name : certificate.names) {
        json["names"].append(validUtf8(name));
    }
    json["validFrom"] = certificate.validFrom;
    json["validUntil"] = certificate.validUntil;
    json["inForce"] = certificate.inForce;
    json["sha256"] = certificate.sha256;
    json["pin"] = certificate.pin;
    json["verified"] = found.verified;
    return json;
}

std::string textOf(const Certificate& certificate, const Probe& found, const std::string& array)
{
    const std::string inForce = certificate.inForce ? "" : "  NOT IN FORCE NOW";
    std::string text = "array        " + array + "\n";
    text += "subject      " + printable(certificate.subject) + "\n";
    text +=
        "issuer       " + printable(certificate.issuer) + (certificate.selfSigned ? "  (itself)" : "") + "\n";
    text += "names        " + (certificate.names.empty() ? "-" : printable(joined(certificate.names))) + "\n";
    text += "valid from   " + certificate.validFrom + "\n";
    text += "valid until  " + certificate.validUntil + inForce + "\n";
    text += "SHA-256      " + certificate.sha256.substr(0, 48) + "\n             " +
            certificate.sha256.substr(48) + "\n";
    text += "pin          " + certificate.pin + "\n";
    text += "verified     " + (found.verified ? std::string("yes") : "no: " + found.trustProblem) + "\n";
    return text +
           "\nCompare the SHA-256 with the one that the array itself shows, then trust it with\n  --pin " +
           certificate.pin + "\n";
}

void fingerprint(Context& context)
{
    const ArrayAddress address = parseArrayAddress("fingerprint", context.text("ARRAY"));
    const long timeout = static_cast<long>(
        parseNumber("--connect-timeout", context.text("--connect-timeout", "30"), 1, 86400));
    const Probe found = probe(address, environment("OVRA_REST_CA_FILE"), timeout);
    if (!found.spoke) {
        throw Failure(
            "no certificate from " + address.text() + ": " + found.reason +
            (found.connected ? "; check that this is a TLS port" : "; check the address and the port"));
    }
    context.printer().result(textOf(found.certificate, found, address.text()),
                             jsonOf(found.certificate, found, address.text()));
}

} // namespace

Commands fingerprintCommands()
{
    const Argument server{
        "ARRAY", "IP[:PORT] of the array's management interface; port 8088 unless given", {}};
    return {{{"fingerprint"},
             "show the array's certificate and the pin to trust it by",
             {server},
             {},
             {},
             fingerprint}};
}

} // namespace tesselctl

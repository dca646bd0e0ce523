#ifndef NETWORK_CERTIFICATE_H
#define NETWORK_CERTIFICATE_H

#include <openssl/x509.h>

#include <string>
#include <vector>

namespace tesselctl {

/** What a person needs to know of a certificate to trust it or not. */
struct Certificate
{
    std::string subject;
    std::string issuer;
    std::vector<std::string> names; ///< DNS names and addresses that it is for
    std::string validFrom;          ///< ISO 8601, UTC
    std::string validUntil;
    bool inForce = false;    ///< now lies between the two
    bool selfSigned = false; ///< subject and issuer are the same
    std::string sha256;      ///< of the whole certificate, "AB:CD:..."
    std::string pin;         ///< "sha256//<base64>" of its public key
};

Certificate describe(X509& certificate);

} // namespace tesselctl

#endif

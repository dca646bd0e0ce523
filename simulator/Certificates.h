#ifndef SIMULATOR_CERTIFICATES_H
#define SIMULATOR_CERTIFICATES_H

#include <set>
#include <string>

namespace arraysim {

/** Where the array's certificate and its authority lie in the state directory. */
struct CertificateFiles
{
    std::string ca;          ///< ca.pem: what clients are given to trust
    std::string certificate; ///< server.pem
    std::string key;         ///< server.key
};

/**
 * Makes an authority on the first start, and a server certificate when there is none that has all these names
 * and stays valid for a day. Throws std::runtime_error.
 */
CertificateFiles provideCertificates(const std::string& stateDir, const std::set<std::string>& names);

/** The hash of a certificate's public key as clients pin it: "sha256//" and base64. */
std::string pinnedKey(const std::string& certificateFile);

} // namespace arraysim

#endif

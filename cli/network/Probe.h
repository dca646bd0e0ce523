#ifndef NETWORK_PROBE_H
#define NETWORK_PROBE_H

#include "network/ArrayAddress.h"
#include "network/Certificate.h"

#include <string>

namespace tesselctl {

/** How far a connection came. */
struct Probe
{
    bool connected = false; ///< TCP
    bool spoke = false;     ///< TLS 1.2 or later; the certificate is there
    std::string reason;     ///< why it came no further
    Certificate certificate;
    bool verified = false;    ///< by the CA file, for this address
    std::string trustProblem; ///< why not
};

/**
 * Connects, shakes hands and closes; sends no request.
 * @param caFile PEM bundle to verify with; empty: the system's own.
 */
Probe probe(const ArrayAddress& address, const std::string& caFile, long timeoutSeconds);

} // namespace tesselctl

#endif

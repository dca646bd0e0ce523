#ifndef TESSEL_TRANSPORT_H
#define TESSEL_TRANSPORT_H

/** @file
 * How one array is trusted, and how long it is waited for. */

#include <tessel/DeviceManager.h>
#include <tessel/Export.h>

#include <string>

namespace ovra {
namespace tessel {

/**
 * How an array is trusted and how long it is waited for. What is given holds whole: nothing of it is taken
 * from the process's settings or the environment, and a pin or authority of one array is no proof for
 * another.
 */
struct TransportOptions
{
    std::string caFile;    ///< PEM bundle to trust, and nothing else; empty: the system's own
    std::string pinnedKey; ///< without a CA file the only proof asked for, with one a proof more:
                           ///< "sha256//<base64>" of the array's public key; several separated by ";"
    bool insecure = false; ///< no verification at all; logged as a warning
    long connectTimeoutSeconds = 30; ///< TCP and TLS; 0: no limit
    long timeoutSeconds = 300;       ///< one request as a whole; 0: no limit
};

/** @return the settings of the process, which hold for every array without its own. Thread-safe. */
TESSEL_API TransportOptions processTransport();

/**
 * Gives an array settings of its own, for the requests from now on, login among them; they go with the device
 * manager. Thread-safe; not while a call of the device manager is at work.
 * @param manager of the array.
 * @param options taken as they are: a file that cannot be read shows itself at the next request.
 * @throws OvraAPIException when the REST library of this program is an older one, which knows none.
 */
TESSEL_API void setTransport(CDeviceManager& manager, const TransportOptions& options);

} // namespace tessel
} // namespace ovra

#endif

#ifndef OVRA_REST_RESTSETTINGS_H
#define OVRA_REST_RESTSETTINGS_H

/** @file
 * How servers are trusted and how long they are waited for. What a program links for the SDK (the CMake
 * target Ovra::TesselAPI, pkg-config's ovra-tessel) brings the library that holds these functions. */

#include <string>

/**
 * How servers are trusted and how long they are waited for, for the whole process.
 *
 * The environment sets the initial values (read once, through secure_getenv): OVRA_REST_CA_FILE,
 * OVRA_REST_PINNED_KEY, OVRA_REST_INSECURE (1 = true), OVRA_REST_CONNECT_TIMEOUT_S, OVRA_REST_TIMEOUT_S.
 */
struct RestSettings
{
    std::string caFile;    ///< PEM bundle to trust, and nothing else; empty: the system's own
    std::string pinnedKey; ///< without a CA file the only proof asked for, with one a proof more:
                           ///< "sha256//<base64>" of the server's public key; several separated by ";"
    bool insecure = false; ///< no verification at all; logged as a warning
    long connectTimeoutSeconds = 30; ///< name look-up, TCP and TLS; 0: no limit
    long timeoutSeconds = 300;       ///< one request as a whole, a second attempt included; 0: no limit
};

/** @return the settings in force. Thread-safe. */
__attribute__((visibility("default"))) RestSettings RestGetSettings();

/**
 * Replaces the settings for connections made from now on; idle connections are dropped. Thread-safe.
 * @param settings taken as they are: a file that cannot be read shows itself at the next request.
 */
__attribute__((visibility("default"))) void RestSetSettings(const RestSettings& settings);

#endif

#ifndef OVRA_REST_RESTFAILURE_H
#define OVRA_REST_RESTFAILURE_H

/** @file
 * Why a request failed, beside the number that SendRequest returns. A build of this library may lack it. */

/** How far a request came. */
enum REST_PHASE_E
{
    REST_NOT_CONNECTED = 0, ///< no connection
    REST_CONNECTED = 1,     ///< connected; the TLS handshake may have failed. The server has no request
    REST_SENT = 2           ///< sent, in part at least: the server may have carried it out
};

/** Why a request failed. */
struct RestFailure
{
    int result;             ///< what SendRequest returned; 0: it did not fail
    REST_PHASE_E phase;     ///< how far it came
    long verifyResult;      ///< OpenSSL's verdict on the certificate (X509_V_ERR_...), as libcurl tells it
    unsigned long tlsError; ///< OpenSSL's number of the error of a handshake; 0: it had none
    int systemError;        ///< errno of a connection that failed; 0: none
    char text[256];         ///< in words, without passwords, tokens and cookies
};

/** @return of the last request of this thread. Changed by its next one. Allocates nothing. */
__attribute__((visibility("default"))) const RestFailure& RestLastFailure() noexcept;

#endif

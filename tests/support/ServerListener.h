#ifndef SUPPORT_SERVERLISTENER_H
#define SUPPORT_SERVERLISTENER_H

#include "MisbehavingServer.h"

#include <openssl/ssl.h>

namespace tessel_test {

/** A socket that listens on a free port of that address and never blocks. */
int listenOn(const std::string& address);

unsigned short portOf(int listener);

/** What the server shows of itself; null for one without TLS. */
SSL_CTX* makeContext(const MisbehavingServer::Options& options);

} // namespace tessel_test

#endif

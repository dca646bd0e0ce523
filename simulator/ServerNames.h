#ifndef SIMULATOR_SERVERNAMES_H
#define SIMULATOR_SERVERNAMES_H

#include <set>
#include <string>

namespace arraysim {

/**
 * What clients may call a server that listens on an address: the loopback names and the address; for all
 * addresses (0.0.0.0 and ::) this host's name and each of its addresses that is up. Throws
 * std::runtime_error.
 */
std::set<std::string> serverNames(const std::string& address);

bool isIpAddress(const std::string& text);

} // namespace arraysim

#endif

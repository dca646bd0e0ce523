#ifndef OVRA_REST_OVRATOOL_H
#define OVRA_REST_OVRATOOL_H

#include <string>

/** Checks of what users type. Thread-safe. */
class __attribute__((visibility("default"))) OvraTool
{
public:
    /**
     * Checks the form of an address; nothing is looked up.
     * @param ip text to check.
     * @return true for an IPv4 (dotted quad) or IPv6 address (no brackets, no zone), and nothing else.
     */
    static bool CheckIPValid(const std::string& ip);
};

#endif

#ifndef OVRA_REST_OVRATOOL_H
#define OVRA_REST_OVRATOOL_H

#include <string>

class __attribute__((visibility("default"))) OvraTool
{
public:
    /** True for the text of an IPv4 (dotted quad) or IPv6 address (no brackets, no zone), and nothing else. */
    static bool CheckIPValid(const std::string& ip);
};

#endif

#ifndef BENCH_SERVERS_H
#define BENCH_SERVERS_H

#include "Ways.h"

#include <cstdio>
#include <string>
#include <sys/types.h>
#include <vector>

namespace bench {

/** A bench_server, which goes with this object. */
class Servers
{
public:
    /** Starts it. @param count servers. @param milliseconds what an answer takes. */
    explicit Servers(unsigned count = 1, unsigned milliseconds = 0);
    ~Servers();
    Servers(const Servers&) = delete;
    Servers& operator=(const Servers&) = delete;

    const Server& operator[](size_t index) const { return m_all[index]; }
    /** TLS handshakes of all of them so far. */
    unsigned long handshakes();

private:
    pid_t m_process = -1;
    std::FILE* m_to = nullptr;
    std::FILE* m_from = nullptr;
    std::vector<Server> m_all;
};

} // namespace bench

#endif

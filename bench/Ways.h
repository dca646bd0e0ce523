#ifndef BENCH_WAYS_H
#define BENCH_WAYS_H

#include <tessel/Tessel.h>

#include <memory>
#include <string>
#include <vector>

namespace bench {

/** A server of bench_server, as its clients know it. */
struct Server
{
    std::string port;
    std::string caFile;
};

/** One way to read LUN 7 of a server, over a connection that is kept. */
class Way
{
public:
    virtual ~Way() = default;
    virtual void call() = 0;
};

/** The SDK, with a device manager of its own that is logged in. */
class Sdk : public Way
{
public:
    explicit Sdk(const Server& server);
    ~Sdk() override;
    Sdk(const Sdk&) = delete;
    Sdk& operator=(const Sdk&) = delete;

    void call() override;
    /** The LUNs of a group, of which the server has as many as its ID says. */
    std::vector<LunMO> list(unsigned count);

private:
    CDeviceManager* m_array;
    CLunHandler* m_luns = nullptr;
};

/**
 * "bare": libcurl alone; "json": the answer is read too, by one reader of JsonCpp; "least": what is promised
 * of a call on top of that, a handle of its own for each request where libcurl needs that and three lines of
 * logs that are written at once, all by libraries; "sdk"; "observed": the SDK with an observer.
 */
std::unique_ptr<Way> way(const std::string& name, const Server& server);

} // namespace bench

#endif

// A program of a user's that ends in the middle of its work. Usage: Ending WAY ADDRESS PORT
//   static   a static object logs out, as late as a process can
//   threads  exit is called while eight threads are inside operations
#include <tessel/Tessel.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr unsigned THREADS = 8;

/** Logs out when static objects are destroyed; it is made before anything of the libraries is used. */
struct Session
{
    CDeviceManager* array = nullptr;

    ~Session()
    {
        const bool ended = array == nullptr || array->logoutDevice();
        if (array != nullptr) {
            CDeviceManager::releaseInstance(array);
        }
        if (!ended) {
            _exit(3);
        }
    }
};

Session session;

bool endStatically(const std::string& address, unsigned int port)
{
    session.array = CDeviceManager::getInstance(0, 0);
    return session.array->loginDevice(address, port, "user", "password", USERTYPE_LOCAL);
}

bool endAmongThreads(const std::string& address, unsigned int port)
{
    static std::atomic<unsigned> begun = 0;
    for (unsigned i = 0; i < THREADS; ++i) {
        std::thread([address, port] {
            CDeviceManager* const array = CDeviceManager::getInstance(0, 0);
            array->useConnection(address, port, "device", "token", "cookie=1");
            auto* const luns = static_cast<CLunHandler*>(array->getHandler(LUN_HANDLER));
            luns->getLun("1");
            for (++begun;;) {
                luns->getLun("1");
            }
        }).detach();
    }
    while (begun < THREADS) {
        std::this_thread::yield();
    }
    return true;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 4) {
        return 2;
    }
    const bool statically = std::strcmp(arguments[1], "static") == 0;
    const auto port = static_cast<unsigned int>(std::atoi(arguments[3]));
    const bool worked = statically ? endStatically(arguments[2], port) : endAmongThreads(arguments[2], port);
    std::exit(worked ? 0 : 1);
}

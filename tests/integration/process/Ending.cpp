// A program of a user's that ends in the middle of its work. Usage: Ending WAY ADDRESS PORT
//   static   a static object logs out, as late as a process can
//   whole    the same, having logged in before main (the port is in ENDING_LOG_IN_BEFORE_MAIN), as early as
//   it can threads  exit is called while eight threads are inside operations
#include <tessel/Tessel.h>

#include <atomic>
#include <cstdlib>
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

    Session()
    {
        const char* const port = std::getenv("ENDING_LOG_IN_BEFORE_MAIN");
        if (port != nullptr && !logIn("127.0.0.1", static_cast<unsigned int>(std::atoi(port)))) {
            _exit(4);
        }
    }

    bool logIn(const std::string& address, unsigned int port)
    {
        array = CDeviceManager::getInstance(0, 0);
        return array->loginDevice(address, port, "user", "password", USERTYPE_LOCAL);
    }

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
    const std::string way = arguments[1];
    const auto port = static_cast<unsigned int>(std::atoi(arguments[3]));
    const bool worked = way == "whole"    ? session.array != nullptr
                        : way == "static" ? session.logIn(arguments[2], port)
                                          : endAmongThreads(arguments[2], port);
    std::exit(worked ? 0 : 1);
}

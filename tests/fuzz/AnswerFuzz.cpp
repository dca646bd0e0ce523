// Whole HTTP answers: libcurl, the REST library, and an operation of the SDK that reads its record. The
// connection is a pair of sockets with the answer in it; there is no TLS on it, which is another's.
#include "FuzzTarget.h"

#include "session/DeviceManagerImpl.h"
#include "support/CurlSetopt.h"
#include "support/EveryOperation.h"
#include "support/RecordingPlatform.h"

#include <ovra/rest/UserManager.h>

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr size_t MOST_BYTES = 64 * 1024; // that fit the socket

std::string g_answer;

template <class Function>
Function* next(const char* name, Function*)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/** One end of a connection whose other end has sent the answer, and sends no more. */
int answeredSocket()
{
    int ends[2] = {-1, -1};
    mustHold(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "there are sockets");
    const int room = static_cast<int>(4 * MOST_BYTES);
    setsockopt(ends[1], SOL_SOCKET, SO_SNDBUF, &room, sizeof(room));
    mustHold(send(ends[1], g_answer.data(), g_answer.size(), MSG_DONTWAIT) ==
                 static_cast<ssize_t>(g_answer.size()),
             "the answer fits");
    shutdown(ends[1], SHUT_WR);
    static int before = -1; // its end takes the request meanwhile
    if (before >= 0) {
        close(before);
    }
    before = ends[1];
    return ends[0];
}

/** The operations that are requests alone. */
const std::vector<tessel_test::PublicOperation>& operations()
{
    static const auto all = [] {
        std::vector<tessel_test::PublicOperation> found;
        for (const auto& operation : tessel_test::operationsOfHandlers()) {
            if (std::strncmp(operation.name, "scan", 4) != 0 &&
                std::strstr(operation.name, "tach") == nullptr) {
                found.push_back(operation);
            }
        }
        return found;
    }();
    return all;
}

} // namespace

extern "C" int socket(int domain, int type, int protocol) noexcept
{
    return domain == AF_INET ? answeredSocket() : next("socket", &socket)(domain, type, protocol);
}

extern "C" int connect(int fd, const sockaddr* address, socklen_t size)
{
    return address->sa_family == AF_INET ? 0 : next("connect", &connect)(fd, address, size);
}

void* chosenArgument(CURLoption option, void* given)
{
    switch (option) {
    case CURLOPT_URL:
        return const_cast<char*>("http://127.0.0.1:1/");
    case CURLOPT_PROTOCOLS_STR:
        return const_cast<char*>("http");
    default:
        return given;
    }
}

/** The first byte says which operation gets the answer, the rest is the answer to each of its requests. */
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1 || size > MOST_BYTES) {
        return 0;
    }
    RecordingPlatform::get().reset();
    const size_t which = data[0] % (operations().size() + 2);
    g_answer = textOf(data + 1, size - 1);
    CDeviceManagerImpl manager;
    try {
        if (which == 0) {
            manager.loginDevice("127.0.0.1", 1, "user", "password", USERTYPE_LOCAL);
        } else if (which == 1) {
            manager.useConnection("127.0.0.1", 1, "1", "token", "cookie");
            manager.keepAlive();
        } else {
            manager.useConnection("127.0.0.1", 1, "1", "token", "cookie");
            operations()[which - 2].call(manager);
        }
    } catch (const OvraAPIException& thrown) {
        mustHold(std::strncmp(thrown.what(), "Exception:", 10) == 0, "an exception begins as all do");
    } catch (const std::bad_alloc&) { // libcurl's word for an answer that it has no room for
    }
    CUserManager::getInstance()->removeUser(&manager);
    return 0;
}

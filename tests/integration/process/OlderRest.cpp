// A program beside a REST library that was built before it had settings of one array, limits of calls and
// words for a failure. Usage: OlderRest ADDRESS PORT. Ends with the number of the first step that went wrong.
#include <tessel/Tessel.h>

#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <string>

using namespace ovra::tessel;

namespace {

bool isThrown(const std::function<void()>& call, const std::string& text)
{
    try {
        call();
    } catch (const OvraAPIException& thrown) {
        return std::string(thrown.what()).find(text) != std::string::npos;
    }
    return false;
}

int firstWrongStep(const std::string& address, unsigned int port)
{
    if (dlsym(RTLD_DEFAULT, "_Z11RestSetCallPK8RestCall") != nullptr) {
        return 9; // it is not the older one
    }
    Array array;
    if (!array.manager().loginDevice(address, port, "user", "password", USERTYPE_LOCAL) ||
        array.luns()->getLun("1").ID != "1") {
        return 1;
    }
    LunQuery all;
    if (array.luns()->getLunByLunGroup("1", all).size() != 1) {
        return 7;
    }
    const Cancellation cancellation;
    cancellation.cancel();
    {
        const CallLimit limit(cancellation, std::chrono::hours(1)); // its requests hear of none
        if (array.luns()->getLun("1").ID != "1") {
            return 2;
        }
    }
    if (!isThrown([&] { setTransport(array.manager(), TransportOptions()); }, "knows no settings")) {
        return 3;
    }
    if (!processTransport().caFile.empty()) {
        return 4;
    }
    if (!array.manager().useConnection(address, 1, "device", "token", "cookie=1") ||
        !isThrown([&] { array.luns()->getLun("1"); }, "url error or internet error getLun")) {
        return 5;
    }
    const Failure failure = lastFailure();
    const bool isTold = failure.kind == FailureKind::NOT_REACHABLE && failure.result == 7 &&
                        failure.operation == "getLun" && failure.transport.empty();
    return isTold ? 0 : 6;
}

} // namespace

int main(int, char** argv)
{
    return firstWrongStep(argv[1], static_cast<unsigned int>(std::atoi(argv[2])));
}

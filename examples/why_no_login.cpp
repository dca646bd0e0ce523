// Logs in, and tells why that failed: the kind, the reason, and the words of the array or of the transport.

#include <tessel/Tessel.h>

#include <cstdlib>
#include <iostream>

using namespace ovra::tessel;

namespace {

const char* adviceFor(const Failure& failure)
{
    switch (failure.kind) {
    case FailureKind::REFUSED:
        return "do as the array says";
    case FailureKind::NOT_TRUSTED:
        return failure.reason == FailureReason::CERTIFICATE_PIN
                   ? "compare the key before you pin the new one"
                   : "look at the certificate, and at what is trusted";
    case FailureKind::NOT_REACHABLE:
        return failure.reason == FailureReason::NO_TLS ? "this is not the port of the management interface"
                                                       : "check address, port and network";
    case FailureKind::TIMED_OUT:
        return "is anybody there?";
    default:
        return "see the run log";
    }
}

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 4 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... why_no_login ADDRESS PORT USER\n";
        return 2;
    }
    Array array;
    if (array.manager().loginDevice(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password,
                                    USERTYPE_LOCAL)) {
        std::cout << "logged in\n";
        return array.manager().logoutDevice() ? 0 : 1;
    }
    const Failure why = lastFailure();
    std::cout << static_cast<int>(why.kind) << " " << static_cast<int>(why.reason) << " " << why.code << ": "
              << (why.code != 0 ? why.description : why.transport) << "; " << adviceFor(why)
              << (why.canTryAgain ? "; or try again" : "") << "\n";
    return 1;
}

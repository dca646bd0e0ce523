// Answers every GET with one LUN, from memory, on loopback. Prints its port and the file of its authority;
// ends with its input. A process of its own: what it costs is not counted with what is measured.

#include "LunOfTheServer.h"
#include "MisbehavingServer.h"

#include <iostream>

using tessel_test::Behaviour;

int main()
{
    tessel_test::MisbehavingServer server;
    server.setHandler([](const tessel_test::ReceivedRequest& request) {
        return request.method() == "POST" ? Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})",
                                                               "Set-Cookie: s=1; path=/\r\n")
                                          : Behaviour::success(bench::LUN);
    });
    std::cout << server.port() << " " << tessel_test::TestCertificates::instance().caFile() << std::endl;
    std::cin.get();
}

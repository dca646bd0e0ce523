// Servers on loopback that answer every GET with one LUN, from memory; the list of a LUN group has as many
// records as the group's ID says. A process of its own: what it costs is not counted with what is measured.
//   bench_server [SERVERS [MILLISECONDS]]     how many, and what each answer but that of a login takes
// Prints their ports and the file of their authority; for each line "handshakes" on its input the TLS
// handshakes so far. Ends with any other line and with its input.

#include "LunOfTheServer.h"
#include "MisbehavingServer.h"

#include <chrono>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

using tessel_test::Behaviour;
using tessel_test::MisbehavingServer;

namespace {

const std::string& listOf(const std::string& count)
{
    static std::map<std::string, std::string> lists; // of one server's thread: no other is asked for lists
    std::string& list = lists[count];
    if (list.empty()) {
        const std::string lun = bench::LUN;
        list = "[";
        for (unsigned long i = 1; i <= std::stoul(count); ++i) {
            list +=
                (i == 1 ? R"({"ID":")" : R"(,{"ID":")") + std::to_string(i) + lun.substr(lun.find(R"(",)"));
        }
        list += "]";
    }
    return list;
}

Behaviour answer(const tessel_test::ReceivedRequest& request, std::chrono::milliseconds takes)
{
    if (request.method() == "POST") {
        return Behaviour::success(R"({"deviceid":"D1","iBaseToken":"T1"})", "Set-Cookie: s=1; path=/\r\n");
    }
    const std::string group = "ASSOCIATEOBJID=";
    const std::string target = request.target();
    const size_t at = target.find(group);
    Behaviour behaviour =
        Behaviour::success(at == std::string::npos ? bench::LUN : listOf(target.substr(at + group.size())));
    behaviour.before = takes;
    return behaviour;
}

} // namespace

int main(int count, char** arguments)
{
    const unsigned long servers = count > 1 ? std::stoul(arguments[1]) : 1;
    const std::chrono::milliseconds takes(count > 2 ? std::stol(arguments[2]) : 0);
    std::vector<std::unique_ptr<MisbehavingServer>> all;
    while (all.size() < servers) {
        all.push_back(std::make_unique<MisbehavingServer>());
        all.back()->setHandler([=](const auto& request) { return answer(request, takes); });
        std::cout << all.back()->port() << " ";
    }
    std::cout << tessel_test::TestCertificates::instance().caFile() << std::endl;
    for (std::string line; std::getline(std::cin, line) && line == "handshakes";) {
        unsigned long handshakes = 0;
        for (const auto& server : all) {
            handshakes += server->handshakes();
        }
        std::cout << handshakes << std::endl;
    }
}

#include "disk/Initiator.h"

#include "disk/HostFiles.h"

#include <ovra/disk/Files.h>

#include <arpa/inet.h>
#include <array>
#include <netdb.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>

namespace tesselctl {
namespace {

constexpr const char* OWN_INITIATOR = "/etc/iscsi/initiatorname.iscsi";
constexpr std::string_view KEY = "InitiatorName=";

} // namespace

std::vector<Option> initiatorOptions()
{
    Option file{"--initiator-file", "FILE",
                "file that names this host's initiator (/etc/iscsi/initiatorname.iscsi)"};
    file.isFile = true;
    return {{"--initiator", "IQN", "iSCSI initiator of the host; this host's own unless given"}, file};
}

std::vector<Option> anyInitiatorOptions()
{
    std::vector<Option> options = initiatorOptions();
    options[0] = {"--initiator", "IQN|WWPN", "initiator of the host; this host's own unless given"};
    return options;
}

bool isIscsiName(const std::string& id)
{
    const std::string kind = id.substr(0, 4);
    return kind == "iqn." || kind == "eui." || kind == "naa.";
}

std::string initiatorFromFile(const std::string& path)
{
    for (std::string line : ovra::disk::linesOf(ovra::disk::contentOf(path))) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (line.compare(0, KEY.size(), KEY) == 0) {
            std::string name = line.substr(KEY.size());
            name.erase(name.find_last_not_of(" \t\r") + 1);
            if (!name.empty()) {
                return name;
            }
        }
    }
    throw Failure("this host's iSCSI name is not in " + path +
                  " (a line InitiatorName=iqn...): install open-iscsi, or "
                  "name the initiator with --initiator");
}

std::string chosenInitiator(const Context& context)
{
    if (context.has("--initiator")) {
        return context.text("--initiator");
    }
    return initiatorFromFile(context.text("--initiator-file", hostPath(OWN_INITIATOR)));
}

ovra::tessel::HostInitiator chosenAnyInitiator(const Context& context)
{
    const std::string id = chosenInitiator(context);
    return {!isIscsiName(id), id};
}

std::string localAddressTowards(const ArrayAddress& array)
{
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* target = nullptr;
    if (getaddrinfo(array.ip.c_str(), std::to_string(array.port).c_str(), &hints, &target) != 0) {
        return "";
    }
    const int descriptor = socket(target->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_storage local{};
    socklen_t size = sizeof(local);
    std::array<char, NI_MAXHOST> text{};
    void* address = &local;
    // Connecting a datagram socket sends nothing; it only asks the kernel for the way.
    const bool found = descriptor >= 0 && connect(descriptor, target->ai_addr, target->ai_addrlen) == 0 &&
                       getsockname(descriptor, static_cast<sockaddr*>(address), &size) == 0 &&
                       getnameinfo(static_cast<sockaddr*>(address), size, text.data(), text.size(), nullptr,
                                   0, NI_NUMERICHOST) == 0;
    if (descriptor >= 0) {
        close(descriptor);
    }
    freeaddrinfo(target);
    return found ? text.data() : "";
}

} // namespace tesselctl

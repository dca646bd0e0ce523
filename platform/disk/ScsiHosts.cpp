#include "ovra/disk/ScsiHosts.h"

#include "ovra/disk/Files.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace ovra::disk {
namespace {

constexpr const char* SESSIONS = "/sys/class/iscsi_session/";
constexpr const char* FC_HOSTS = "/sys/class/fc_host/";

/** "1" of ../../devices/platform/host1/session1/iscsi_session/session1; empty when there is no host in it. */
std::string hostIn(const std::string& link)
{
    constexpr const char* HOST = "/host";
    const size_t at = link.find(HOST);
    if (at == std::string::npos) {
        return "";
    }
    const std::string number = link.substr(at + std::strlen(HOST));
    return number.substr(0, number.find('/'));
}

} // namespace

std::string plainInitiator(bool isFC, const std::string& id)
{
    std::string plain = id;
    std::transform(plain.begin(), plain.end(), plain.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (isFC) {
        plain.erase(std::remove(plain.begin(), plain.end(), ':'), plain.end());
        plain.erase(0, plain.compare(0, 2, "0x") == 0 ? 2 : 0);
    }
    return plain;
}

std::vector<ScsiHost> scsiHosts(const std::string& root)
{
    std::vector<ScsiHost> hosts;
    for (const std::string& session : namesThere(root + SESSIONS)) {
        const std::string folder = std::string(root).append(SESSIONS).append(session);
        const std::string state = valueThere(folder + "/state");
        hosts.push_back({hostIn(targetThere(folder)), false,
                         plainInitiator(false, valueThere(folder + "/initiatorname")), state == "LOGGED_IN",
                         std::string(session)
                             .append(" to ")
                             .append(valueThere(folder + "/targetname"))
                             .append(" is ")
                             .append(state)});
    }
    for (const std::string& name : namesThere(root + FC_HOSTS)) {
        const std::string folder = std::string(root).append(FC_HOSTS).append(name);
        const std::string state = valueThere(folder + "/port_state");
        const std::string port = plainInitiator(true, valueThere(folder + "/port_name"));
        hosts.push_back({hostIn("/" + name), true, port, state == "Online",
                         std::string(name).append(" with port ").append(port).append(" is ").append(state)});
    }
    hosts.erase(
        std::remove_if(hosts.begin(), hosts.end(), [](const ScsiHost& host) { return host.number.empty(); }),
        hosts.end());
    return hosts;
}

std::string scanFileOf(const std::string& hostNumber)
{
    return "/sys/class/scsi_host/host" + hostNumber + "/scan";
}

} // namespace ovra::disk

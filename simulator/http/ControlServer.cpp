#include "http/ControlServer.h"

#include <set>
#include <stdexcept>

namespace arraysim {
ControlServer::ControlServer(World& world, ArrayInterface& array, Sessions& sessions, Faults& faults,
                             Journal& journal, ArrayServer& server, ArrayFacts facts)
    : m_world(world), m_array(array), m_sessions(sessions), m_faults(faults), m_journal(journal),
      m_arrayServer(server), m_facts(std::move(facts))
{
    m_server.set_keep_alive_max_count(1);
    m_server.set_tcp_nodelay(true);
    m_server.set_socket_options(ownPort);
    m_server.set_payload_max_length(LARGEST_BODY);
    m_server.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        const bool own = isOwnPage(request);
        if (own && !carriesStrayBody(request) && !request.has_header("Transfer-Encoding")) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        response.status = own ? 411 : 403;
        return httplib::Server::HandlerResponse::Handled;
    });
    routeFacts();
    routeFaults();
    routeWatch();
    routeObjects();
    routeState();
}

bool ControlServer::isOwnPage(const httplib::Request& request) const
{
    const std::set<std::string> hosts{"127.0.0.1:" + std::to_string(m_port),
                                      "localhost:" + std::to_string(m_port)};
    const std::string origin = request.get_header_value("Origin");
    return hosts.count(request.get_header_value("Host")) != 0 &&
           (!request.has_header("Origin") ||
            (origin.rfind("http://", 0) == 0 && hosts.count(origin.substr(7)) != 0));
}

ControlServer::~ControlServer()
{
    stop();
}

int ControlServer::start(int port)
{
    static constexpr const char* LOOPBACK = "127.0.0.1";
    const int bound =
        port == 0 ? m_server.bind_to_any_port(LOOPBACK) : (m_server.bind_to_port(LOOPBACK, port) ? port : -1);
    if (bound <= 0) {
        throw std::runtime_error("cannot listen on " + std::string(LOOPBACK) + " port " +
                                 std::to_string(port));
    }
    m_port = bound;
    m_thread = std::thread([this] { m_server.listen_after_bind(); });
    while (!m_server.is_running()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return bound;
}

void ControlServer::stop()
{
    if (m_thread.joinable()) {
        m_server.stop();
        m_thread.join();
    }
}

} // namespace arraysim

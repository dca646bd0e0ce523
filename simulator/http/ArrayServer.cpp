#include "http/ArrayServer.h"

#include "base/Json.h"
#include "watch/Secrets.h"

#include <chrono>
#include <stdexcept>

namespace arraysim {
namespace {

constexpr const char* ANY_PATH = R"([\s\S]*)";
constexpr int BACKLOG = 512;
constexpr std::size_t LARGEST_BODY = 1U << 20;

bool useCertificate(SSL_CTX& context, const std::string& certificate, const std::string& key)
{
    return SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) == 1 &&
           SSL_CTX_use_certificate_chain_file(&context, certificate.c_str()) == 1 &&
           SSL_CTX_use_PrivateKey_file(&context, key.c_str(), SSL_FILETYPE_PEM) == 1 &&
           SSL_CTX_check_private_key(&context) == 1;
}

} // namespace

class ArrayServer::Server : public httplib::SSLServer
{
public:
    using SSLServer::SSLServer;
    /** The library listens with a backlog of 5, which many clients at once overrun. */
    void widenBacklog() { ::listen(svr_sock_, BACKLOG); }
};

ArrayServer::ArrayServer(ArrayInterface& array, Sessions& sessions, Faults& faults, Journal& journal,
                         const std::string& certificate, const std::string& key)
    : m_array(array), m_sessions(sessions), m_faults(faults), m_journal(journal),
      m_server(std::make_unique<Server>(
          [&](SSL_CTX& context) { return useCertificate(context, certificate, key); }))
{
    if (!m_server->is_valid()) {
        throw std::runtime_error("the certificate " + certificate + " and the key " + key +
                                 " cannot be used");
    }
    m_connections.watch(m_server->ssl_context());
    m_server->new_task_queue = [this] { return new ConnectionThreads(m_accepted); };
    m_server->set_tcp_nodelay(true);
    m_server->set_socket_options(ownPort);
    m_server->set_keep_alive_max_count(1000000000);
    m_server->set_keep_alive_timeout(600);
    m_server->set_read_timeout(60);
    m_server->set_write_timeout(60);
    m_server->set_payload_max_length(LARGEST_BODY);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response);
    };
    m_server->Get(ANY_PATH, handler).Post(ANY_PATH, handler).Put(ANY_PATH, handler).Delete(ANY_PATH, handler);
    m_server->set_logger([this](const httplib::Request& request, const httplib::Response&) {
        m_connections.requestEnds(request.ssl);
    });
    m_server->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty() && !response.content_provider_) {
            const ArrayError refused(Code::METHOD_UNSUPPORTED,
                                     "The array does not understand this HTTP request.");
            response.set_content(Answer::error(refused).body(), JSON_TYPE);
        }
    });
}

ArrayServer::~ArrayServer()
{
    stop();
}

int ArrayServer::start(const std::string& address, int port)
{
    const int bound =
        port == 0 ? m_server->bind_to_any_port(address) : (m_server->bind_to_port(address, port) ? port : -1);
    if (bound <= 0) {
        throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port));
    }
    m_server->widenBacklog();
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return bound;
}

void ArrayServer::stop()
{
    if (!m_thread.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> guard(m_pauseMutex);
        m_stopping = true;
    }
    m_pauseEnds.notify_all();
    m_server->stop();
    m_connections.stopReading();
    m_thread.join();
}

Json::Value ArrayServer::counters()
{
    Json::Value all(Json::objectValue);
    all["connections"] = Json::UInt64(m_accepted.load());
    all["handshakes"] = Json::UInt64(m_connections.handshakes());
    all["requests"] = m_journal.requests();
    all["sessions"] = Json::UInt64(m_sessions.count());
    return all;
}

void ArrayServer::clearCounters()
{
    m_accepted = 0;
    m_connections.clearCounters();
    m_journal.clearCounters();
}

void ArrayServer::serve(const httplib::Request& request, httplib::Response& response)
{
    const auto start = std::chrono::steady_clock::now();
    JournalEntry entry;
    entry.connection = m_connections.requestBegins(request.ssl);
    entry.method = request.method;
    entry.target = relativeTarget(request.target);
    entry.resource = resourceTemplate(entry.target);
    entry.body = withoutSecrets(request.body);
    entry.contentType = request.get_header_value("Content-Type");

    const auto fault = m_faults.strike(entry.method, entry.target);
    const Answer answer = answerTo(request, fault ? &*fault : nullptr);
    entry.status = answer.status;
    entry.code = answer.code;
    entry.fault = fault ? fault->id : 0;
    entry.milliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    m_journal.add(entry);
    send(request, response, answer, fault ? &*fault : nullptr);
}

Answer ArrayServer::answerTo(const httplib::Request& request, const Fault* fault)
{
    const std::string token = request.get_header_value("iBaseToken");
    if (fault != nullptr && fault->action == FaultAction::DROP_SESSION) {
        m_sessions.drop(token);
    }
    Answer answer;
    if (fault == nullptr || fault->performed) {
        answer = m_array.handle(
            {request.method, request.target, request.body, token, request.get_header_value("Cookie")});
    }
    if (fault != nullptr) {
        pause(fault->delayMs);
        if (fault->action == FaultAction::ERROR) {
            answer = Answer();
            answer.status = fault->status;
            answer.code = fault->code;
            answer.description = fault->description;
        }
    }
    return answer;
}

void ArrayServer::send(const httplib::Request& request, httplib::Response& response, const Answer& answer,
                       const Fault* fault)
{
    response.status = answer.status;
    for (const auto& [key, value] : answer.headers) {
        response.set_header(key, value);
    }
    const std::string body = answer.body();
    switch (fault == nullptr ? FaultAction::DELAY : fault->action) {
    case FaultAction::CLOSE:
        m_connections.cut(request.ssl);
        break;
    case FaultAction::TRUNCATE:
        // The header promises the whole body; half of it follows, then the connection ends.
        response.set_content_provider(body.size(), JSON_TYPE,
                                      [body](size_t, size_t, httplib::DataSink& sink) {
                                          sink.write(body.data(), body.size() / 2);
                                          return false;
                                      });
        break;
    case FaultAction::INVALID_JSON:
        response.set_content(body.substr(0, body.size() - 1) + ",", JSON_TYPE);
        break;
    case FaultAction::ANSWER:
        response.status = fault->status;
        response.set_content(fault->body, JSON_TYPE);
        break;
    default:
        response.set_content(body, JSON_TYPE);
    }
}

void ArrayServer::pause(unsigned milliseconds)
{
    if (milliseconds > 0) {
        std::unique_lock<std::mutex> lock(m_pauseMutex);
        m_pauseEnds.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return m_stopping; });
    }
}

} // namespace arraysim

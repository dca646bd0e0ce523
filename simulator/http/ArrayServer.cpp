#include "http/ArrayServer.h"

#include "base/Json.h"
#include "watch/Secrets.h"

#include <chrono>
#include <stdexcept>

namespace arraysim {
namespace {

constexpr const char* ANY_PATH = R"([\s\S]*)";
constexpr int BACKLOG = 512;

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
                         const ServerSettings& settings)
    : m_array(array), m_sessions(sessions), m_faults(faults), m_journal(journal),
      m_answerMs(settings.answerMs), m_connections(settings.connectionLimit),
      m_server(std::make_unique<Server>(
          [&](SSL_CTX& context) { return useCertificate(context, settings.certificate, settings.key); }))
{
    if (!m_server->is_valid()) {
        throw std::runtime_error("the certificate " + settings.certificate + " and the key " + settings.key +
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
    m_server->set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        m_connections.headEnds(request.ssl);
        if (!carriesStrayBody(request) && !m_connections.isEnding(request.ssl)) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        response.status = 400;
        m_connections.endWithAnswer(request.ssl);
        return httplib::Server::HandlerResponse::Handled;
    });
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response, request.body);
    };
    const auto bodyHandler = [this](const httplib::Request& request, httplib::Response& response,
                                    const httplib::ContentReader& reader) {
        serveWithBody(request, response, reader);
    };
    m_server->Get(ANY_PATH, handler).Delete(ANY_PATH, handler);
    m_server->Post(ANY_PATH, bodyHandler).Put(ANY_PATH, bodyHandler);
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
    m_pauses.end();
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
    all["sessionsHighest"] = Json::UInt64(m_sessions.highest());
    return all;
}

void ArrayServer::clearCounters()
{
    m_accepted = 0;
    m_connections.clearCounters();
    m_journal.clearCounters();
    m_sessions.resetHighest();
}

void ArrayServer::serveWithBody(const httplib::Request& request, httplib::Response& response,
                                const httplib::ContentReader& reader)
{
    std::string body;
    const BodyRead read = readBody(reader, body);
    if (read == BodyRead::WHOLE) {
        serve(request, response, body);
        return;
    }
    if (read == BodyRead::BROKEN) {
        m_connections.endWithAnswer(request.ssl);
    }
    response.status = read == BodyRead::TOO_LARGE || response.status == 413 ? 413 : 400;
}

void ArrayServer::serve(const httplib::Request& request, httplib::Response& response, const std::string& body)
{
    const auto start = std::chrono::steady_clock::now();
    JournalEntry entry;
    entry.connection = m_connections.requestBegins(request.ssl);
    entry.session = m_sessions.number(request.get_header_value("iBaseToken"));
    entry.method = request.method;
    entry.target = relativeTarget(request.target);

    const auto fault = m_faults.strike({entry.method, entry.target, entry.session});
    const Answer answer = answerTo(request, body, fault ? &*fault : nullptr);
    entry.status = answer.status;
    entry.code = answer.code;
    entry.fault = fault ? fault->id : 0;
    entry.milliseconds =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    journalize(std::move(entry), request, body);
    if (fault) {
        FaultedAnswer(*fault, m_connections, m_pauses).send(request.ssl, response, answer);
    } else {
        sendAnswer(response, answer);
    }
}

Answer ArrayServer::answerTo(const httplib::Request& request, const std::string& body, const Fault* fault)
{
    const std::string token = request.get_header_value("iBaseToken");
    if (fault != nullptr && fault->action == FaultAction::DROP_SESSION) {
        m_sessions.drop(token);
    }
    Answer answer;
    if (fault == nullptr || fault->performed) {
        answer =
            m_array.handle({request.method, request.target, body, token, request.get_header_value("Cookie")});
    }
    m_pauses.wait(m_answerMs);
    if (fault != nullptr) {
        m_pauses.wait(fault->delayMs);
        if (fault->action == FaultAction::ERROR) {
            answer = Answer();
            answer.status = fault->status;
            answer.code = fault->code;
            answer.description = fault->description;
        }
    }
    return answer;
}

/** The request was judged before: a stranger's body is neither read for secrets nor kept. */
void ArrayServer::journalize(JournalEntry entry, const httplib::Request& request, const std::string& body)
{
    const HoldsSecret told = [this](const std::string& text) { return m_sessions.isTold(text); };
    entry.resource = resourceTemplate(entry.target);
    entry.target = shownTarget(entry.target, told);
    if (m_journal.isReadable()) {
        const bool isStranger = entry.code == wireCode(Code::SESSION_INVALID);
        const std::string type = request.get_header_value("Content-Type");
        entry.body = isStranger ? sizeAlone(body) : shownBody(body, told);
        entry.contentType = told(type) ? std::string() : type;
    }
    m_journal.add(entry);
}

} // namespace arraysim

#include "MisbehavingServer.h"

#include "ServerConnection.h"
#include "ServerListener.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <list>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace tessel_test {

class MisbehavingServer::Impl final : public ConnectionObserver
{
public:
    explicit Impl(const Options& options)
        : m_options(options), m_context(makeContext(options)), m_listener(listenOn(options.address)),
          m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_port(portOf(m_listener)),
          m_thread([this] { run(); })
    {
    }

    ~Impl()
    {
        m_stop = true;
        wake();
        m_thread.join();
        close(m_listener);
        close(m_wake);
        SSL_CTX_free(m_context);
    }

    void closeConnections()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const unsigned ticket = ++m_closeRequests;
        wake();
        m_closed.wait(lock, [&] { return m_closesDone >= ticket; });
    }

    void handshakeDone() override { ++m_handshakes; }

    Behaviour requestReceived(const ReceivedRequest& request) override
    {
        Handler handler;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_requests.push_back(request);
            if (!m_queue.empty()) {
                Behaviour next = m_queue.front();
                m_queue.pop_front();
                return next;
            }
            if (!m_handler) {
                return m_default;
            }
            handler = m_handler;
        }
        return handler(request);
    }

    void closedByClient(bool closeNotify) override
    {
        ++m_endedByClient;
        m_closeNotifies += closeNotify ? 1 : 0;
    }

    const Options m_options;
    SSL_CTX* const m_context;
    const int m_listener;
    const int m_wake;
    const unsigned short m_port;

    std::atomic<unsigned> m_accepts{0};
    std::atomic<unsigned> m_handshakes{0};
    std::atomic<unsigned> m_closeNotifies{0};
    std::atomic<unsigned> m_endedByClient{0};

    std::mutex m_mutex; ///< guards the members up to m_closesDone
    std::vector<ReceivedRequest> m_requests;
    std::deque<Behaviour> m_queue;
    Handler m_handler;
    Behaviour m_default = Behaviour::success();
    unsigned m_closeRequests = 0;
    unsigned m_closesDone = 0;
    std::condition_variable m_closed;

private:
    void wake()
    {
        const uint64_t one = 1;
        if (write(m_wake, &one, sizeof(one)) < 0) {
            return; // the counter is not 0 already: the thread wakes all the same
        }
    }

    void run()
    {
        // OpenSSL writes to connections that the client may have left.
        sigset_t pipeSignal;
        sigemptyset(&pipeSignal);
        sigaddset(&pipeSignal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
        while (!m_stop) {
            waitForEvents();
            acceptAll();
            m_connections.remove_if([](ServerConnection& connection) { return !connection.step(); });
            closeIfAsked();
        }
        m_connections.clear();
    }

    void waitForEvents()
    {
        std::vector<pollfd> polled{{m_listener, POLLIN, 0}, {m_wake, POLLIN, 0}};
        int timeout = -1;
        for (const ServerConnection& connection : m_connections) {
            const short events = connection.wanted();
            // A socket that is not waited for is left out: its hang-up would end every poll at once.
            polled.push_back({events == 0 ? -1 : connection.socket(), events, 0});
            if (const auto due = connection.due()) {
                const auto left =
                    std::chrono::ceil<std::chrono::milliseconds>(*due - ServerConnection::Clock::now());
                const int milliseconds = static_cast<int>(std::max<long>(0, left.count()));
                timeout = timeout < 0 ? milliseconds : std::min(timeout, milliseconds);
            }
        }
        poll(polled.data(), polled.size(), timeout);
        uint64_t drained = 0;
        if (read(m_wake, &drained, sizeof(drained)) < 0) {
            return; // nothing to drain
        }
    }

    void acceptAll()
    {
        for (;;) {
            const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
            if (socket < 0) {
                return;
            }
            m_connections.emplace_back(socket, ++m_accepts, m_context, m_options.silentOnConnect, *this);
        }
    }

    void closeIfAsked()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closesDone == m_closeRequests) {
            return;
        }
        for (ServerConnection& connection : m_connections) {
            connection.shutDown();
        }
        m_connections.clear();
        m_closesDone = m_closeRequests;
        m_closed.notify_all();
    }

    std::list<ServerConnection> m_connections; ///< the server thread's own
    std::atomic<bool> m_stop{false};
    std::thread m_thread; ///< last, so that everything it uses is there
};

MisbehavingServer::MisbehavingServer() : MisbehavingServer(Options()) {}
MisbehavingServer::MisbehavingServer(const Options& options) : m_impl(std::make_unique<Impl>(options)) {}
MisbehavingServer::~MisbehavingServer() = default;

unsigned short MisbehavingServer::port() const
{
    return m_impl->m_port;
}

std::string MisbehavingServer::url() const
{
    const std::string& address = m_impl->m_options.address;
    const bool v6 = address.find(':') != std::string::npos;
    return "https://" + (v6 ? "[" + address + "]" : address) + ":" + std::to_string(port());
}

void MisbehavingServer::enqueue(const Behaviour& behaviour)
{
    const std::lock_guard<std::mutex> lock(m_impl->m_mutex);
    m_impl->m_queue.push_back(behaviour);
}

void MisbehavingServer::setHandler(Handler handler)
{
    const std::lock_guard<std::mutex> lock(m_impl->m_mutex);
    m_impl->m_handler = std::move(handler);
}

void MisbehavingServer::setDefault(const Behaviour& behaviour)
{
    const std::lock_guard<std::mutex> lock(m_impl->m_mutex);
    m_impl->m_default = behaviour;
}

unsigned MisbehavingServer::accepts() const
{
    return m_impl->m_accepts;
}
unsigned MisbehavingServer::handshakes() const
{
    return m_impl->m_handshakes;
}
unsigned MisbehavingServer::closeNotifies() const
{
    return m_impl->m_closeNotifies;
}
unsigned MisbehavingServer::endedByClient() const
{
    return m_impl->m_endedByClient;
}

unsigned MisbehavingServer::requestCount() const
{
    return static_cast<unsigned>(requests().size());
}

std::vector<ReceivedRequest> MisbehavingServer::requests() const
{
    const std::lock_guard<std::mutex> lock(m_impl->m_mutex);
    return m_impl->m_requests;
}

void MisbehavingServer::closeConnections()
{
    m_impl->closeConnections();
}

} // namespace tessel_test

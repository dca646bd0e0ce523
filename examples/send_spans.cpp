// Sends a span for each call, and one for each of its steps, to an OpenTelemetry collector that listens on
// this host (OTLP over HTTP, in JSON); the program itself shows a LUN to a host.

#include <tessel/Access.h>
#include <tessel/Array.h>
#include <tessel/Observer.h>

#include <curl/curl.h>
#include <json/json.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

using namespace ovra::tessel;

namespace {

constexpr size_t MOST_WAITING = 1000; // spans; a collector that is away costs no memory
constexpr long TIMEOUT_MS = 5000;
constexpr int CLIENT = 3; // the kind of a span, and the status of one, as the protocol numbers them
constexpr int FAILED = 2;

Json::Value attribute(const std::string& key, const std::string& value)
{
    Json::Value made;
    made["key"] = key;
    made["value"]["stringValue"] = value;
    return made;
}

std::string nanoseconds(std::chrono::system_clock::time_point time)
{
    return std::to_string(
        std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count());
}

/** A span without its place in a trace. */
Json::Value spanOf(const OperationEvent& event)
{
    Json::Value span;
    span["name"] = event.operation;
    span["kind"] = CLIENT;
    span["startTimeUnixNano"] = nanoseconds(event.start);
    span["endTimeUnixNano"] =
        nanoseconds(event.start + std::chrono::microseconds(static_cast<long long>(event.seconds * 1e6)));
    span["attributes"].append(attribute("server.address", event.array));
    span["attributes"].append(attribute("enduser.id", event.user));
    for (const ObservedObject& object : event.objects) {
        span["attributes"].append(attribute("tessel." + object.kind, object.id));
    }
    if (!event.isDone) {
        span["status"]["code"] = FAILED;
        span["status"]["message"] = event.what;
    }
    return span;
}

class Spans : public Observer
{
public:
    explicit Spans(const std::string& endpoint)
        : m_url(endpoint + "/v1/traces"), m_sender([this] { sendAll(); })
    {
    }

    /** Sends what waits. */
    ~Spans() override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_isEnding = true;
        }
        m_changed.notify_one();
        m_sender.join();
    }

    // The steps of a call are told before it, by the same thread.
    void operationEnded(const OperationEvent& event) override
    {
        Json::Value span = spanOf(event);
        const std::lock_guard<std::mutex> lock(m_mutex);
        span["spanId"] = number(1);
        std::vector<Json::Value>& steps = m_steps[event.thread];
        steps.push_back(span);
        if (!event.within.empty()) {
            return;
        }
        const std::string trace = number(2);
        for (Json::Value& each : steps) {
            each["traceId"] = trace;
            if (each["spanId"] != span["spanId"]) {
                each["parentSpanId"] = span["spanId"];
            }
            if (m_waiting.size() < MOST_WAITING) {
                m_waiting.append(each);
            }
        }
        m_steps.erase(event.thread);
        m_changed.notify_one();
    }

private:
    /** Not zero, of so many times 16 digits. */
    std::string number(int parts)
    {
        std::string text;
        for (int i = 0; i < parts * 16; ++i) {
            text += "123456789abcdef"[m_random() % 15];
        }
        return text;
    }

    void sendAll()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        while (!m_isEnding || !m_waiting.empty()) {
            m_changed.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
            Json::Value spans(Json::arrayValue);
            spans.swap(m_waiting);
            lock.unlock();
            send(spans);
            lock.lock();
        }
    }

    void send(const Json::Value& spans) const
    {
        if (spans.empty()) {
            return;
        }
        Json::Value body;
        Json::Value& resource = body["resourceSpans"][0];
        resource["resource"]["attributes"].append(attribute("service.name", "backup"));
        resource["scopeSpans"][0]["scope"]["name"] = "ovra-tessel";
        resource["scopeSpans"][0]["spans"] = spans;
        const std::string text = Json::writeString(Json::StreamWriterBuilder(), body);

        const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(),
                                                                         &curl_easy_cleanup);
        const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> headers(
            curl_slist_append(nullptr, "Content-Type: application/json"), &curl_slist_free_all);
        curl_easy_setopt(handle.get(), CURLOPT_URL, m_url.c_str());
        curl_easy_setopt(handle.get(), CURLOPT_HTTPHEADER, headers.get());
        curl_easy_setopt(handle.get(), CURLOPT_POSTFIELDS, text.c_str());
        curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT_MS, TIMEOUT_MS);
        curl_easy_setopt(handle.get(), CURLOPT_FAILONERROR, 1L);
        curl_easy_setopt(handle.get(), CURLOPT_NOSIGNAL, 1L);
        const CURLcode result = curl_easy_perform(handle.get());
        if (result != CURLE_OK) {
            std::cerr << spans.size() << " spans are lost: " << curl_easy_strerror(result) << "\n";
        }
    }

    const std::string m_url;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<int, std::vector<Json::Value>> m_steps; ///< of calls that have not ended, by thread
    Json::Value m_waiting = Json::Value(Json::arrayValue);
    std::mt19937_64 m_random = std::mt19937_64(std::random_device()());
    bool m_isEnding = false;
    std::thread m_sender; ///< the last member: it uses the others
};

} // namespace

int main(int argc, char** argv)
{
    const char* const password = std::getenv("TESSEL_PASSWORD");
    if (argc != 6 || password == nullptr) {
        std::cerr << "usage: TESSEL_PASSWORD=... send_spans ADDRESS PORT USER LUN-ID INITIATOR\n";
        return 2;
    }
    const char* const endpoint = std::getenv("OTEL_EXPORTER_OTLP_ENDPOINT");
    const std::shared_ptr<Observer> spans =
        std::make_shared<Spans>(endpoint != nullptr ? endpoint : "http://127.0.0.1:4318");
    addObserver(spans);
    int status = 0;
    try {
        Array array;
        array.login(argv[1], std::strtoul(argv[2], nullptr, 10), argv[3], password);
        ensureVisible(array.manager(), StorageObject::lun(argv[4]), HostInitiator::iscsi(argv[5]));
    } catch (const OvraAPIException& e) {
        std::cerr << e.what() << "\n";
        status = 1;
    }
    removeObserver(spans);
    return status;
}

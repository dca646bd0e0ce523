#include "Ways.h"

#include "Folder.h"

#include <curl/curl.h>
#include <json/json.h>
#include <ovra/rest/RestSettings.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <stdexcept>

namespace bench {
namespace {

class Bare : public Way
{
public:
    explicit Bare(const Server& server)
        : m_url("https://127.0.0.1:" + server.port + "/deviceManager/rest/D1/lun/7"), m_caFile(server.caFile)
    {
        set();
    }
    ~Bare() override { curl_easy_cleanup(m_handle); }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    void call() override
    {
        m_body.clear();
        if (exchange(m_handle) != CURLE_OK) {
            throw std::runtime_error("the server does not answer");
        }
    }

protected:
    virtual CURLcode exchange(CURL* handle) { return curl_easy_perform(handle); }
    const std::string& body() const { return m_body; }
    /** Goes on with another handle. */
    void renew()
    {
        curl_easy_cleanup(m_handle);
        m_handle = curl_easy_init();
        set();
    }

private:
    static size_t receive(char* data, size_t size, size_t count, void* body)
    {
        static_cast<std::string*>(body)->append(data, size * count);
        return size * count;
    }
    void set()
    {
        curl_easy_setopt(m_handle, CURLOPT_URL, m_url.c_str());
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, m_caFile.c_str());
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &Bare::receive);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, &m_body);
    }

    CURL* m_handle = curl_easy_init();
    const std::string m_url;
    const std::string m_caFile;
    std::string m_body;
};

class Parsed : public Bare
{
public:
    using Bare::Bare;

    void call() override
    {
        Bare::call();
        Json::Value root;
        if (!m_reader->parse(body().data(), body().data() + body().size(), &root, nullptr) ||
            root["data"]["ID"].asString() != "7") {
            throw std::runtime_error("the answer is not the LUN");
        }
    }

private:
    const std::unique_ptr<Json::CharReader> m_reader{Json::CharReaderBuilder().newCharReader()};
};

struct MultiCleanup
{
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};

/** What a call promises beside its exchange, with what other libraries have for it. */
class Least : public Parsed
{
public:
    explicit Least(const Server& server) : Parsed(server) { m_log.flush_on(spdlog::level::info); }

    void call() override
    {
        Parsed::call();
        if (curl_version_info(CURLVERSION_NOW)->version_num < 0x080200) {
            renew(); // one that is kept may use memory that it has freed
        }
        m_log.info("{} enter getLun successfully!", "bench");
        m_log.info(
            R"(product="{}" type="1" protocol="" operation="getLun" source="" target="" transaction="" )"
            R"(start="{}" end="{}" result="0" extension="")",
            "bench", "2026-01-01 10:20:30 045", "2026-01-01 10:20:30 046");
        m_log.info("{} leave getLun successfully!", "bench");
    }

protected:
    /** Over a connection that outlives the handle. */
    CURLcode exchange(CURL* handle) override
    {
        curl_multi_add_handle(m_connection.get(), handle);
        int running = 1;
        while (curl_multi_perform(m_connection.get(), &running) == CURLM_OK && running != 0) {
            curl_multi_poll(m_connection.get(), nullptr, 0, 1000, nullptr);
        }
        int left = 0;
        const CURLMsg* const message = curl_multi_info_read(m_connection.get(), &left);
        const CURLcode code = message != nullptr ? message->data.result : CURLE_FAILED_INIT;
        curl_multi_remove_handle(m_connection.get(), handle);
        return code;
    }

private:
    const std::unique_ptr<CURLM, MultiCleanup> m_connection{curl_multi_init()};
    const tessel_test::Folder m_folder;
    spdlog::logger m_log{"least",
                         std::make_shared<spdlog::sinks::basic_file_sink_mt>(m_folder.path() + "/log")};
};

/** The SDK with an observer that looks at every event, as one that counts does. */
class Observed : public Sdk
{
public:
    using Sdk::Sdk;
    ~Observed() override { ovra::tessel::removeObserver(m_counter); }
    Observed(const Observed&) = delete;
    Observed& operator=(const Observed&) = delete;

    void call() override
    {
        if (m_counter == nullptr) { // behind the login
            m_counter = std::make_shared<Counter>();
            ovra::tessel::addObserver(m_counter);
        }
        Sdk::call();
    }

private:
    struct Counter : ovra::tessel::Observer
    {
        void operationEnded(const ovra::tessel::OperationEvent& event) override { seconds += event.seconds; }
        double seconds = 0;
    };

    std::shared_ptr<Counter> m_counter;
};

/** Sets the trust where it is another one: that ends the connections that are kept. */
void trust(const std::string& caFile)
{
    RestSettings settings = RestGetSettings();
    if (settings.caFile != caFile) {
        settings.caFile = caFile;
        RestSetSettings(settings);
    }
}

} // namespace

Sdk::Sdk(const Server& server) : m_array((trust(server.caFile), CDeviceManager::getInstance(0, 0)))
{
    if (!m_array->loginDevice("127.0.0.1", static_cast<unsigned>(std::stoul(server.port)), "admin", "secret",
                              USERTYPE_LOCAL)) {
        throw std::runtime_error("no login");
    }
    m_luns = static_cast<CLunHandler*>(m_array->getHandler(LUN_HANDLER));
}

Sdk::~Sdk()
{
    CDeviceManager::releaseInstance(m_array);
}

void Sdk::call()
{
    if (m_luns->getLun("7").ID != "7") {
        throw std::runtime_error("another LUN");
    }
}

std::vector<LunMO> Sdk::list(unsigned count)
{
    LunQuery everything;
    return m_luns->getLunByLunGroup(std::to_string(count), everything);
}

std::unique_ptr<Way> way(const std::string& name, const Server& server)
{
    if (name == "observed") {
        return std::make_unique<Observed>(server);
    }
    if (name == "sdk") {
        return std::make_unique<Sdk>(server);
    }
    if (name == "least") {
        return std::make_unique<Least>(server);
    }
    if (name == "json") {
        return std::make_unique<Parsed>(server);
    }
    return std::make_unique<Bare>(server);
}

} // namespace bench

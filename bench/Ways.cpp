#include "Ways.h"

#include <curl/curl.h>
#include <json/json.h>
#include <ovra/rest/RestSettings.h>

#include <stdexcept>

namespace bench {
namespace {

class Bare : public Way
{
public:
    Bare(const Server& server, bool parses) : m_parses(parses)
    {
        curl_easy_setopt(m_handle, CURLOPT_URL,
                         ("https://127.0.0.1:" + server.port + "/deviceManager/rest/D1/lun/7").c_str());
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, server.caFile.c_str());
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &Bare::receive);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, &m_body);
    }
    ~Bare() override { curl_easy_cleanup(m_handle); }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    void call() override
    {
        m_body.clear();
        if (curl_easy_perform(m_handle) != CURLE_OK) {
            throw std::runtime_error("the server does not answer");
        }
        if (m_parses) {
            Json::Value root;
            if (!m_reader->parse(m_body.data(), m_body.data() + m_body.size(), &root, nullptr) ||
                root["data"]["ID"].asString() != "7") {
                throw std::runtime_error("the answer is not the LUN");
            }
        }
    }

private:
    static size_t receive(char* data, size_t size, size_t count, void* body)
    {
        static_cast<std::string*>(body)->append(data, size * count);
        return size * count;
    }

    CURL* const m_handle = curl_easy_init();
    const std::unique_ptr<Json::CharReader> m_reader{Json::CharReaderBuilder().newCharReader()};
    const bool m_parses;
    std::string m_body;
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

std::unique_ptr<Way> bare(const Server& server, bool parses)
{
    return std::make_unique<Bare>(server, parses);
}

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
    return bare(server, name == "json");
}

} // namespace bench

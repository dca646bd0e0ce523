// What one getLun costs its caller beside the same GET in libcurl alone on one connection ("bare"), and that
// with one reader of JsonCpp kept ("json").
//   call_cost count KIND CALLS PORT CAFILE           makes the calls; prints the allocations of one; KIND:
//   bare, json,
//                                                    sdk, observed (sdk, with an observer)
//   call_cost time ROUNDS CALLS PORT CAFILE          all kinds in turn; prints wall and CPU as ratios to
//   json, medians

#include <tessel/Tessel.h>

#include <curl/curl.h>
#include <json/json.h>
#include <ovra/rest/RestSettings.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
}

namespace {
std::atomic<unsigned long> allocations{0};
}

// Below everything: those of libcurl and OpenSSL are counted too.
extern "C" void* malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}
extern "C" void* realloc(void* memory, size_t size)
{
    ++allocations;
    return __libc_realloc(memory, size);
}

namespace {

/** One way to read LUN 7. */
class Kind
{
public:
    virtual ~Kind() = default;
    virtual void call() = 0;
};

class Bare : public Kind
{
public:
    Bare(const std::string& port, const std::string& caFile, bool parses) : m_parses(parses)
    {
        curl_easy_setopt(m_handle, CURLOPT_URL,
                         ("https://127.0.0.1:" + port + "/deviceManager/rest/D1/lun/7").c_str());
        curl_easy_setopt(m_handle, CURLOPT_CAINFO, caFile.c_str());
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

class Sdk : public Kind
{
public:
    Sdk(const std::string& port, const std::string& caFile)
    {
        RestSettings settings;
        settings.caFile = caFile;
        RestSetSettings(settings);
        if (!m_array->loginDevice("127.0.0.1", static_cast<unsigned short>(std::stoul(port)), "admin",
                                  "secret", USERTYPE_LOCAL)) {
            throw std::runtime_error("no login");
        }
        m_luns = static_cast<CLunHandler*>(m_array->getHandler(LUN_HANDLER));
    }
    ~Sdk() override { CDeviceManager::releaseInstance(m_array); }
    Sdk(const Sdk&) = delete;
    Sdk& operator=(const Sdk&) = delete;

    void call() override
    {
        if (m_luns->getLun("7").ID != "7") {
            throw std::runtime_error("another LUN");
        }
    }

private:
    CDeviceManager* const m_array = CDeviceManager::getInstance(0, 0);
    CLunHandler* m_luns = nullptr;
};

/** The same with an observer that looks at every event, as one that counts does. */
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

std::unique_ptr<Kind> make(const std::string& kind, const std::string& port, const std::string& caFile)
{
    if (kind == "observed") {
        return std::make_unique<Observed>(port, caFile);
    }
    if (kind == "sdk") {
        return std::make_unique<Sdk>(port, caFile);
    }
    return std::make_unique<Bare>(port, caFile, kind == "json");
}

double seconds(clockid_t clock)
{
    timespec now = {};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

struct Cost
{
    double wall;
    double cpu;
};

Cost costOf(Kind& kind, unsigned calls)
{
    const double wall = seconds(CLOCK_MONOTONIC);
    const double cpu = seconds(CLOCK_THREAD_CPUTIME_ID);
    for (unsigned i = 0; i < calls; ++i) {
        kind.call();
    }
    return {seconds(CLOCK_MONOTONIC) - wall, seconds(CLOCK_THREAD_CPUTIME_ID) - cpu};
}

void printMedian(const char* name, std::vector<double> ratios)
{
    std::sort(ratios.begin(), ratios.end());
    const size_t last = ratios.size() - 1;
    std::printf("%s %.3f (%.3f to %.3f)\n", name, ratios[last / 2], ratios[last / 4],
                ratios[last - last / 4]);
}

void count(const std::string& kind, unsigned calls, const std::string& port, const std::string& caFile)
{
    constexpr unsigned WARM = 20;
    const std::unique_ptr<Kind> one = make(kind, port, caFile);
    costOf(*one, WARM);
    const unsigned long before = allocations;
    costOf(*one, calls);
    std::printf("%.1f\n", static_cast<double>(allocations - before) / calls);
}

void compare(unsigned rounds, unsigned calls, const std::string& port, const std::string& caFile)
{
    const std::unique_ptr<Kind> bare = make("bare", port, caFile);
    const std::unique_ptr<Kind> json = make("json", port, caFile);
    const std::unique_ptr<Kind> sdk = make("sdk", port, caFile);
    std::vector<double> bareWall;
    std::vector<double> jsonWall;
    std::vector<double> jsonCpu;
    for (unsigned round = 0; round < rounds; ++round) {
        const Cost first = costOf(*bare, calls);
        const Cost second = costOf(*json, calls);
        const Cost third = costOf(*sdk, calls);
        bareWall.push_back(third.wall / first.wall);
        jsonWall.push_back(third.wall / second.wall);
        jsonCpu.push_back(third.cpu / second.cpu);
    }
    printMedian("wall/bare", bareWall);
    printMedian("wall/json", jsonWall);
    printMedian("cpu/json", jsonCpu);
}

} // namespace

int main(int count_, char** arguments)
{
    try {
        if (count_ == 6 && std::strcmp(arguments[1], "count") == 0) {
            count(arguments[2], static_cast<unsigned>(std::stoul(arguments[3])), arguments[4], arguments[5]);
            return 0;
        }
        if (count_ == 6 && std::strcmp(arguments[1], "time") == 0) {
            compare(static_cast<unsigned>(std::stoul(arguments[2])),
                    static_cast<unsigned>(std::stoul(arguments[3])), arguments[4], arguments[5]);
            return 0;
        }
        std::fprintf(stderr,
                     "usage: call_cost count KIND CALLS PORT CAFILE | time ROUNDS CALLS PORT CAFILE\n");
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "call_cost: %s\n", problem.what());
    }
    return 1;
}

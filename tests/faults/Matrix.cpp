#include "faults/Matrix.h"

#include "faults/ShortTimeLimit.h"

#include <json/writer.h>
#include <ovra/rest/RestSettings.h>
#include <tessel/Failure.h>

#include <algorithm>
#include <chrono>

using tessel_test::Behaviour;
using tessel_test::ReceivedRequest;
using tessel_test::TestCertificates;

namespace {

constexpr const char* BASE = "/deviceManager/rest/D1";

/** The data of a reply as JSON text; empty when it has none. */
std::string dataOf(const Reply& reply)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    if (reply.records.empty()) {
        return "";
    }
    if (reply.records.size() == 1) {
        return Json::writeString(builder, reply.records.front());
    }
    Json::Value list(Json::arrayValue);
    for (const Json::Value& record : reply.records) {
        list.append(record);
    }
    return Json::writeString(builder, list);
}

Behaviour good(const Reply& reply)
{
    return reply.code == 0 ? Behaviour::success(dataOf(reply))
                           : Behaviour::error(reply.code, reply.description);
}

} // namespace

std::vector<Exchange> allExchanges()
{
    std::vector<Exchange> all;
    for (const auto& some :
         {lunExchanges(), lunGroupExchanges(), snapshotExchanges(), hostExchanges(), hostGroupExchanges(),
          iscsiExchanges(), fcExchanges(), mappingViewExchanges(), portExchanges()}) {
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

std::vector<Fault> faultsOf(const Exchange& exchange)
{
    std::vector<Fault> all = faults();
    const std::vector<Fault> ofFields = fieldFaults(exchange);
    all.insert(all.end(), ofFields.begin(), ofFields.end());
    return all;
}

Matrix::Matrix()
{
    RestSettings settings;
    settings.caFile = TestCertificates::instance().caFile();
    RestSetSettings(settings);
    m_server.setHandler([this](const ReceivedRequest& request) {
        const std::lock_guard<std::mutex> guard(m_mutex);
        const std::string target = request.target();
        m_arrived.push_back(request.method() + " " +
                            (target.compare(0, std::string(BASE).size(), BASE) == 0
                                 ? target.substr(std::string(BASE).size())
                                 : target));
        if (m_script.empty()) {
            return m_afterwards;
        }
        const Behaviour next = m_script.front();
        m_script.pop_front();
        return next;
    });
    connectTo(m_server.port());
}

void Matrix::connectTo(unsigned short port)
{
    m_manager.useConnection("127.0.0.1", port, "D1", "T1", "session=S1");
}

Seen Matrix::call(const Exchange& exchange)
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_script.clear();
        for (const Reply& reply : exchange.repliesBefore) {
            m_script.push_back(good(reply));
        }
        m_script.push_back(good(exchange.answer));
        for (const Reply& reply : exchange.repliesThen) {
            m_script.push_back(good(reply));
        }
        m_afterwards = Behaviour::success();
    }
    return run(exchange);
}

Seen Matrix::call(const Exchange& exchange, const Fault& fault, bool isLasting)
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_script.clear();
        for (const Reply& reply : exchange.repliesBefore) {
            m_script.push_back(good(reply));
        }
        const std::string data = dataOf(exchange.answer);
        m_script.push_back(fault.behaviour(data));
        if (fault.isRetried && exchange.request.compare(0, 4, "GET ") == 0) {
            m_script.push_back(isLasting ? fault.behaviour(data) : good(exchange.answer));
        }
        for (const Reply& reply : exchange.repliesThen) {
            m_script.push_back(isLasting ? fault.behaviour(dataOf(reply)) : good(reply));
        }
        m_afterwards = isLasting ? fault.behaviour("") : Behaviour::success();
    }
    const ShortTimeLimit limit(fault.isSlow);
    if (fault.port != 0) {
        connectTo(fault.port);
    }
    const Seen seen = run(exchange);
    if (fault.port != 0) {
        connectTo(m_server.port());
    }
    return seen;
}

Seen Matrix::run(const Exchange& exchange)
{
    RecordingPlatform& platform = RecordingPlatform::get();
    platform.reset();
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_arrived.clear();
    }
    const auto start = std::chrono::steady_clock::now();
    Seen seen;
    seen.outcome = outcomeOf([&] { exchange.run(m_manager); });
    seen.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    seen.isFailureKept = static_cast<bool>(ovra::tessel::lastFailure());
    for (const std::string& line : platform.journal()) {
        if (line.compare(0, 20, "warn: no answer from") == 0) {
            ++seen.warnings;
        } else {
            seen.journal.push_back(line);
        }
    }
    const std::lock_guard<std::mutex> guard(m_mutex);
    seen.arrived = m_arrived;
    return seen;
}

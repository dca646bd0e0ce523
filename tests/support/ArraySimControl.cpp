#include "ArraySim.h"

#include <httplib.h>

#include <sstream>
#include <stdexcept>

namespace tessel_test {
namespace {

Json::Value parse(const std::string& text)
{
    Json::Value value;
    std::istringstream stream(text);
    std::string errors;
    if (!Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) {
        throw std::runtime_error("the control interface answered no JSON: " + errors);
    }
    return value;
}

std::string text(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

} // namespace

Json::Value ArraySim::control(const std::string& method, const std::string& path,
                              const Json::Value& body) const
{
    httplib::Client client("127.0.0.1", static_cast<int>(m_controlPort));
    client.set_read_timeout(PATIENCE);
    httplib::Request request;
    request.method = method;
    request.path = path;
    request.body = body.isNull() ? std::string() : text(body);
    const httplib::Result result = client.send(request);
    if (!result || result->status != 200) {
        throw std::runtime_error("control request " + method + " " + path + " failed: " +
                                 (result ? result->body : httplib::to_string(result.error())) + output());
    }
    return parse(result->body);
}

unsigned ArraySim::addFault(const Json::Value& fault) const
{
    return control("POST", "/faults", fault)["id"].asUInt();
}

unsigned ArraySim::addFault(const char* json) const
{
    return addFault(parse(json));
}

unsigned ArraySim::addErrorFault(const std::string& method, const std::string& path, int code,
                                 unsigned count) const
{
    Json::Value fault;
    fault["method"] = method;
    fault["path"] = path;
    fault["action"] = "error";
    fault["code"] = code;
    fault["count"] = count;
    return addFault(fault);
}

Json::Value ArraySim::faults() const
{
    return control("GET", "/faults");
}

void ArraySim::clearFaults() const
{
    control("DELETE", "/faults");
}

Json::Value ArraySim::counters() const
{
    return control("GET", "/counters");
}

unsigned long ArraySim::requests(const std::string& method, const std::string& resource) const
{
    return counters()["requests"].get(method + " " + resource, 0).asUInt64();
}

void ArraySim::resetCounters() const
{
    control("DELETE", "/counters");
}

Json::Value ArraySim::journal() const
{
    return control("GET", "/journal");
}

void ArraySim::clearJournal() const
{
    control("DELETE", "/journal");
}

Json::Value ArraySim::create(const std::string& resource, const Json::Value& members) const
{
    return control("POST", "/objects/" + resource, members)["data"];
}

std::string ArraySim::createLun(const std::string& name, unsigned sectors) const
{
    Json::Value lun;
    lun["NAME"] = name;
    lun["PARENTID"] = "0";
    lun["CAPACITY"] = sectors;
    return create("lun", lun)["ID"].asString();
}

std::string ArraySim::createSnapshot(const std::string& lunId, const std::string& name) const
{
    Json::Value snapshot;
    snapshot["NAME"] = name;
    snapshot["PARENTID"] = lunId;
    return create("snapshot", snapshot)["ID"].asString();
}

Json::Value ArraySim::record(const std::string& resource, const std::string& id) const
{
    return control("GET", "/objects/" + resource + "/" + id)["data"];
}

void ArraySim::remove(const std::string& resource, const std::string& id) const
{
    control("DELETE", "/objects/" + resource + "/" + id);
}

std::vector<std::string> ArraySim::bulkLuns(unsigned count, const std::string& lunGroup,
                                            const std::string& pool) const
{
    Json::Value wanted;
    wanted["count"] = count;
    wanted["pool"] = pool;
    if (!lunGroup.empty()) {
        wanted["lungroup"] = lunGroup;
    }
    const Json::Value made = control("POST", "/bulk/luns", wanted);
    std::vector<std::string> ids;
    for (const auto& id : made["ids"]) {
        ids.push_back(id.asString());
    }
    return ids;
}

void ArraySim::settle(unsigned reads, unsigned lunGroupReads) const
{
    Json::Value wanted;
    wanted["reads"] = reads;
    wanted["lunGroupReads"] = lunGroupReads;
    control("POST", "/settle", wanted);
}

void ArraySim::dropSessions() const
{
    control("DELETE", "/sessions");
}

void ArraySim::advanceSessions(unsigned seconds) const
{
    Json::Value wanted;
    wanted["seconds"] = seconds;
    control("POST", "/sessions/advance", wanted);
}

void ArraySim::reset() const
{
    control("POST", "/reset", Json::Value(Json::objectValue));
}

} // namespace tessel_test

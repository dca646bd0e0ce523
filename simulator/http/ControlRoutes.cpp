#include "http/ControlServer.h"

#include "base/Json.h"
#include "base/Text.h"
#include "model/BulkLuns.h"
#include "model/Exposure.h"
#include "types/StoragePool.h"

#include <type_traits>

namespace arraysim {
namespace {

/** A handler that answers what the function returns as JSON ({} for nothing), or status 400 and why. */
template <typename Function>
httplib::Server::Handler handler(Function function)
{
    return [function](const httplib::Request& request, httplib::Response& response) {
        try {
            Json::Value result(Json::objectValue);
            if constexpr (std::is_void_v<decltype(function(request))>) {
                function(request);
            } else {
                result = function(request);
            }
            response.set_content(jsonText(result), JSON_TYPE);
        } catch (const std::exception& refused) {
            Json::Value why(Json::objectValue);
            why["error"] = refused.what();
            response.status = 400;
            response.set_content(jsonText(why), JSON_TYPE);
        }
    };
}

/** Who sees which LUN and snapshot. */
Json::Value exposures(const World& world)
{
    Json::Value all(Json::arrayValue);
    for (const Type type : {Type::LUN, Type::SNAPSHOT}) {
        for (const auto& entry : world.all(type)) {
            for (const auto& initiator : exposedInitiators(world, {type, entry.first})) {
                Json::Value one(Json::objectValue);
                one["type"] = static_cast<int>(type);
                one["id"] = entry.first;
                one["initiator"] = initiator.second;
                all.append(one);
            }
        }
    }
    return all;
}

} // namespace

void ControlServer::routeFacts()
{
    m_server.Get("/", handler([this](const httplib::Request&) {
                     Json::Value facts(Json::objectValue);
                     facts["url"] = m_facts.url;
                     facts["caFile"] = m_facts.caFile;
                     facts["pinnedKey"] = m_facts.pinnedKey;
                     facts["user"] = m_facts.user;
                     facts["deviceId"] = m_world.deviceId();
                     return facts;
                 }));
}

void ControlServer::routeFaults()
{
    m_server.Get("/faults", handler([this](const httplib::Request&) { return m_faults.list(); }));
    m_server.Post("/faults", handler([this](const httplib::Request& request) {
                      Json::Value added(Json::objectValue);
                      added["id"] = m_faults.add(parseBody(request.body));
                      return added;
                  }));
    m_server.Delete("/faults", handler([this](const httplib::Request&) { m_faults.clear(); }));
    m_server.Delete(R"(/faults/(\d{1,9}))", handler([this](const httplib::Request& request) {
                        if (!m_faults.remove(static_cast<unsigned>(std::stoul(request.matches[1])))) {
                            throw ArrayError(Code::OBJECT_MISSING, "There is no such fault.");
                        }
                    }));
}

void ControlServer::routeWatch()
{
    m_server.Get("/counters", handler([this](const httplib::Request&) { return m_arrayServer.counters(); }));
    m_server.Delete("/counters", handler([this](const httplib::Request&) { m_arrayServer.clearCounters(); }));
    m_server.Get("/journal", handler([this](const httplib::Request& request) {
                     return m_journal.entries(decimal(request.get_param_value("since")).value_or(0));
                 }));
    m_server.Delete("/journal", handler([this](const httplib::Request&) { m_journal.clearEntries(); }));
    m_server.Get("/exposures", handler([this](const httplib::Request&) {
                     const auto lock = m_world.lock();
                     return exposures(m_world);
                 }));
}

void ControlServer::routeObjects()
{
    const auto answer = [this](const httplib::Request& request, httplib::Response& response) {
        const std::string target = request.target.substr(std::string("/objects").size());
        const Answer result = m_array.handleObject(request.method, target, request.body);
        response.status = result.code == 0 ? 200 : 400;
        response.set_content(result.body(), JSON_TYPE);
    };
    const char* objects = "/objects/.*";
    m_server.Get(objects, answer).Post(objects, answer).Put(objects, answer).Delete(objects, answer);
    m_server.Post("/bulk/luns", handler([this](const httplib::Request& request) {
                      const auto lock = m_world.lock();
                      return createLuns(m_world, parseBody(request.body));
                  }));
}

void ControlServer::routeState()
{
    m_server.Put(R"(/state/([^/]+)/([^/]+))", handler([this](const httplib::Request& request) {
                     const ObjectType* type = findResource(request.matches[1]);
                     if (type == nullptr) {
                         throw ArrayError(Code::RESOURCE_UNKNOWN, "The array has no such resource.");
                     }
                     const auto lock = m_world.lock();
                     adjustObject(m_world, *type, request.matches[2], parseBody(request.body));
                 }));
    m_server.Post(
        "/pools", handler([this](const httplib::Request& request) {
            const Json::Value body = parseBody(request.body);
            allowMembers(body, {"NAME", "TOTALCAPACITY"});
            if (!body["TOTALCAPACITY"].isUInt64()) {
                throw ArrayError(Code::MEMBER_INVALID, "A pool needs its TOTALCAPACITY in sectors.");
            }
            const auto lock = m_world.lock();
            Json::Value added(Json::objectValue);
            added["ID"] = addPool(m_world, requiredText(body, "NAME"), body["TOTALCAPACITY"].asUInt64());
            return added;
        }));
    m_server.Get("/sessions", handler([this](const httplib::Request&) { return m_sessions.list(); }));
    m_server.Delete("/sessions", handler([this](const httplib::Request&) { m_sessions.dropAll(); }));
    m_server.Post("/sessions/advance", handler([this](const httplib::Request& request) {
                      m_sessions.advance(
                          std::chrono::seconds(requiredNumber(parseBody(request.body), "seconds")));
                  }));
    m_server.Post("/settle", handler([this](const httplib::Request& request) {
                      const Json::Value body = parseBody(request.body);
                      allowMembers(body, {"reads", "lunGroupReads"});
                      const auto lock = m_world.lock();
                      m_world.settling = {numberIn(body, "reads", 0), numberIn(body, "lunGroupReads", 0)};
                  }));
    m_server.Post("/reset", handler([this](const httplib::Request&) {
                      const auto lock = m_world.lock();
                      m_world.reset();
                      m_world.settling = {};
                      m_sessions.dropAll();
                      m_faults.clear();
                      m_journal.clearEntries();
                      m_arrayServer.clearCounters();
                  }));
}

} // namespace arraysim

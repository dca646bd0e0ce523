#include "http/ControlServer.h"

#include "base/Json.h"
#include "base/Text.h"
#include "model/Exposure.h"
#include "types/StoragePool.h"

namespace arraysim {
namespace {

/** A handler that answers what the function returns as JSON, or status 400 with the reason it threw. */
template <typename Function>
httplib::Server::Handler handler(Function function)
{
    return [function](const httplib::Request& request, httplib::Response& response) {
        try {
            response.set_content(jsonText(function(request)), JSON_TYPE);
        } catch (const std::exception& refused) {
            Json::Value why(Json::objectValue);
            why["error"] = refused.what();
            response.status = 400;
            response.set_content(jsonText(why), JSON_TYPE);
        }
    };
}

Json::Value done()
{
    return Json::Value(Json::objectValue);
}

unsigned numberIn(const Json::Value& body, const char* key, unsigned otherwise)
{
    if (!body.isMember(key)) {
        return otherwise;
    }
    const int value = requiredNumber(body, key);
    if (value < 0) {
        throw ArrayError(Code::MEMBER_INVALID, std::string("The member ") + key + " must not be negative.");
    }
    return static_cast<unsigned>(value);
}

std::string textIn(const Json::Value& body, const char* key, const std::string& otherwise)
{
    return body.isMember(key) ? requiredText(body, key) : otherwise;
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
    m_server.Delete("/faults", handler([this](const httplib::Request&) {
                        m_faults.clear();
                        return done();
                    }));
    m_server.Delete(R"(/faults/(\d{1,9}))", handler([this](const httplib::Request& request) {
                        if (!m_faults.remove(static_cast<unsigned>(std::stoul(request.matches[1])))) {
                            throw ArrayError(Code::OBJECT_MISSING, "There is no such fault.");
                        }
                        return done();
                    }));
}

void ControlServer::routeWatch()
{
    m_server.Get("/counters", handler([this](const httplib::Request&) { return m_arrayServer.counters(); }));
    m_server.Delete("/counters", handler([this](const httplib::Request&) {
                        m_arrayServer.clearCounters();
                        return done();
                    }));
    m_server.Get("/journal", handler([this](const httplib::Request& request) {
                     return m_journal.entries(decimal(request.get_param_value("since")).value_or(0));
                 }));
    m_server.Delete("/journal", handler([this](const httplib::Request&) {
                        m_journal.clearEntries();
                        return done();
                    }));
    m_server.Get("/exposures", handler([this](const httplib::Request&) {
                     const auto lock = m_world.lock();
                     Json::Value all(Json::arrayValue);
                     for (const Type type : {Type::LUN, Type::SNAPSHOT}) {
                         for (const auto& entry : m_world.all(type)) {
                             for (const auto& initiator : exposedInitiators(m_world, {type, entry.first})) {
                                 Json::Value one(Json::objectValue);
                                 one["type"] = static_cast<int>(type);
                                 one["id"] = entry.first;
                                 one["initiator"] = initiator.second;
                                 all.append(one);
                             }
                         }
                     }
                     return all;
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
                      return bulkLuns(parseBody(request.body));
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
                     return done();
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
    m_server.Delete("/sessions", handler([this](const httplib::Request&) {
                        m_sessions.dropAll();
                        return done();
                    }));
    m_server.Post("/sessions/advance", handler([this](const httplib::Request& request) {
                      m_sessions.advance(
                          std::chrono::seconds(requiredNumber(parseBody(request.body), "seconds")));
                      return done();
                  }));
    m_server.Post("/settle", handler([this](const httplib::Request& request) {
                      const Json::Value body = parseBody(request.body);
                      allowMembers(body, {"reads", "lunGroupReads"});
                      const auto lock = m_world.lock();
                      m_world.settling = {numberIn(body, "reads", 0), numberIn(body, "lunGroupReads", 0)};
                      return done();
                  }));
    m_server.Post("/reset", handler([this](const httplib::Request&) {
                      const auto lock = m_world.lock();
                      m_world.reset();
                      m_world.settling = {};
                      m_sessions.dropAll();
                      m_faults.clear();
                      m_journal.clearEntries();
                      m_arrayServer.clearCounters();
                      return done();
                  }));
}

Json::Value ControlServer::bulkLuns(const Json::Value& wanted)
{
    allowMembers(wanted, {"count", "pool", "lungroup", "prefix", "sectors"});
    const unsigned count = numberIn(wanted, "count", 0);
    const std::string prefix = textIn(wanted, "prefix", "bulk_");
    const std::string group = textIn(wanted, "lungroup", "");
    Json::Value body(Json::objectValue);
    body["PARENTID"] = textIn(wanted, "pool", "0");
    body["CAPACITY"] = numberIn(wanted, "sectors", 2048);
    Json::Value ids(Json::arrayValue);

    const auto lock = m_world.lock();
    World::Transaction transaction(m_world);
    for (unsigned i = 0; i < count; ++i) {
        body["NAME"] = prefix + m_world.nextId(Type::LUN);
        const std::string id = createObject(m_world, objectType(Type::LUN), body, {})["ID"].asString();
        if (!group.empty()) {
            associate(m_world, *relationBetween(Type::LUN_GROUP, Type::LUN), group, id);
        }
        ids.append(id);
    }
    transaction.commit();
    Json::Value made(Json::objectValue);
    made["ids"] = ids;
    return made;
}

} // namespace arraysim

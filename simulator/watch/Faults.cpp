#include "watch/Faults.h"

#include "base/Codes.h"
#include "base/Json.h"

#include <fnmatch.h>

#include <algorithm>
#include <map>

namespace arraysim {
namespace {

const std::map<std::string, FaultAction>& actions()
{
    static const std::map<std::string, FaultAction> names = {
        {"delay", FaultAction::DELAY},
        {"error", FaultAction::ERROR},
        {"close", FaultAction::CLOSE},
        {"truncate", FaultAction::TRUNCATE},
        {"invalidJson", FaultAction::INVALID_JSON},
        {"answer", FaultAction::ANSWER},
        {"dropSession", FaultAction::DROP_SESSION},
        {"reset", FaultAction::RESET},
        {"slow", FaultAction::SLOW},
        {"endless", FaultAction::ENDLESS},
        {"redirect", FaultAction::REDIRECT},
    };
    return names;
}

bool performedByDefault(FaultAction action)
{
    return action == FaultAction::DELAY || action == FaultAction::TRUNCATE ||
           action == FaultAction::INVALID_JSON || action == FaultAction::DROP_SESSION ||
           action == FaultAction::SLOW;
}

bool matches(const std::string& pattern, const std::string& text)
{
    return fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

void takeText(const Json::Value& from, const char* key, std::string& to)
{
    if (from.isMember(key)) {
        if (!from[key].isString()) {
            throw ArrayError(Code::MEMBER_INVALID, std::string("The fault's ") + key + " must be a text.");
        }
        to = from[key].asString();
    }
}

template <typename Number>
void takeNumber(const Json::Value& from, const char* key, Number& to)
{
    if (from.isMember(key)) {
        if (!from[key].isInt() || from[key].asInt() < 0) {
            throw ArrayError(Code::MEMBER_INVALID, std::string("The fault's ") + key + " must be a number.");
        }
        to = static_cast<Number>(from[key].asInt());
    }
}

std::string actionName(FaultAction action)
{
    const auto found = std::find_if(actions().begin(), actions().end(),
                                    [&](const auto& entry) { return entry.second == action; });
    return found->first;
}

} // namespace

unsigned Faults::add(const Json::Value& description)
{
    allowMembers(description,
                 {"method", "path", "query", "session", "share", "seed", "skip", "count", "action",
                  "performed", "delayMs", "code", "description", "status", "body", "location", "pieceMs"});
    Fault fault;
    const auto action = actions().find(requiredText(description, "action"));
    if (action == actions().end()) {
        throw ArrayError(Code::MEMBER_INVALID, "There is no such action for a fault.");
    }
    fault.action = action->second;
    fault.performed = performedByDefault(fault.action);
    if (description.isMember("performed")) {
        if (!description["performed"].isBool()) {
            throw ArrayError(Code::MEMBER_INVALID, "The fault's performed must be true or false.");
        }
        fault.performed = description["performed"].asBool();
    }
    takeText(description, "method", fault.method);
    takeText(description, "path", fault.path);
    takeText(description, "query", fault.query);
    takeText(description, "description", fault.description);
    takeText(description, "body", fault.body);
    takeText(description, "location", fault.location);
    takeNumber(description, "session", fault.session);
    takeNumber(description, "share", fault.share);
    takeNumber(description, "seed", fault.seed);
    takeNumber(description, "pieceMs", fault.pieceMs);
    takeNumber(description, "skip", fault.skip);
    takeNumber(description, "count", fault.count);
    takeNumber(description, "delayMs", fault.delayMs);
    takeNumber(description, "code", fault.code);
    takeNumber(description, "status", fault.status);

    const std::lock_guard<std::mutex> guard(m_mutex);
    fault.id = ++m_lastId;
    m_faults.push_back({fault, std::minstd_rand(fault.seed)});
    return fault.id;
}

Json::Value Faults::list()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    Json::Value all(Json::arrayValue);
    for (const auto& [fault, chance] : m_faults) {
        Json::Value one(Json::objectValue);
        one["id"] = fault.id;
        one["method"] = fault.method;
        one["path"] = fault.path;
        one["query"] = fault.query;
        one["session"] = fault.session;
        one["share"] = fault.share;
        one["action"] = actionName(fault.action);
        one["skip"] = fault.skip;
        one["count"] = fault.count;
        one["hits"] = fault.hits;
        all.append(one);
    }
    return all;
}

bool Faults::remove(unsigned id)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto before = m_faults.size();
    m_faults.remove_if([id](const Set& set) { return set.fault.id == id; });
    return m_faults.size() != before;
}

void Faults::clear()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_faults.clear();
}

std::optional<Fault> Faults::strike(const Struck& request)
{
    const std::size_t mark = request.target.find('?');
    const std::string path = request.target.substr(0, mark);
    const std::string query = mark == std::string::npos ? std::string() : request.target.substr(mark + 1);
    const std::lock_guard<std::mutex> guard(m_mutex);
    for (auto& [fault, chance] : m_faults) {
        const bool spent = fault.count != 0 && fault.hits >= fault.count;
        if (spent || (fault.session != 0 && fault.session != request.session) ||
            !matches(fault.method, request.method) || !matches(fault.path, path) ||
            !matches(fault.query, query)) {
            continue;
        }
        if (fault.skip > 0) {
            --fault.skip;
            continue;
        }
        if (fault.share < 100 && chance() / 16 % 100 >= fault.share) {
            continue;
        }
        ++fault.hits;
        return fault;
    }
    return std::nullopt;
}

} // namespace arraysim

#include "simulation/SimulatedArray.h"

#include <base/Json.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace simulation {
namespace {

constexpr const char* DEVICE_ID = "21000000000000000007";
constexpr unsigned FIRST_NUMBER = 1; // 0 is the target's own
constexpr unsigned SECTORS = 2048;   // of a LUN
constexpr std::uint64_t SECTOR_BYTES = 512;

Json::Value valueOf(const std::string& typed)
{
    const size_t colon = typed.find(':');
    const std::string type = typed.substr(0, colon);
    const std::string text = typed.substr(colon + 1);
    if (type == "string") {
        return text;
    }
    if (type == "bool") {
        return text == "true";
    }
    return static_cast<Json::UInt64>(std::stoull(text));
}

std::string bodyOf(const SentRequest& request)
{
    Json::Value body(Json::objectValue);
    for (const auto& [key, typed] : request.body) {
        body[key] = valueOf(typed);
    }
    return request.body.empty() ? std::string() : arraysim::jsonText(body);
}

Reply replyOf(const arraysim::Answer& answer)
{
    if (answer.code != 0) {
        return Reply::error(answer.code, answer.description);
    }
    Reply reply;
    if (answer.data.isArray()) {
        reply.records.assign(answer.data.begin(), answer.data.end());
    } else if (answer.data.isObject()) {
        reply.records.push_back(answer.data);
    }
    return reply;
}

} // namespace

SimulatedArray::SimulatedArray()
    : m_store(""), m_world((m_store.putSetting("deviceId", DEVICE_ID), m_store)),
      m_sessions(arraysim::SessionSettings(), DEVICE_ID), m_interface(m_world, m_sessions),
      m_watch(m_world, *this)
{
}

void SimulatedArray::reset(unsigned luns)
{
    m_world.reset();
    m_units.clear();
    m_shown.clear();
    m_changes = 0;
    Json::Value initiator;
    initiator["ID"] = INITIATOR;
    change("POST", "/iscsi_initiator", initiator);
    const std::string pool = all("storagepool")[0]["ID"].asString();
    for (unsigned i = 1; i <= luns; ++i) {
        Json::Value lun;
        lun["NAME"] = "lun" + std::to_string(i);
        lun["PARENTID"] = pool;
        lun["CAPACITY"] = SECTORS * i;
        const Reply reply = change("POST", "/lun", lun);
        if (reply.code != 0) {
            throw std::logic_error(reply.description);
        }
        const Json::Value& record = reply.records.at(0);
        m_units[record["ID"].asString()] = {record["WWN"].asString(), record["ID"].asString(),
                                            SECTORS * i * SECTOR_BYTES};
    }
}

Reply SimulatedArray::answer(const SentRequest& request)
{
    static constexpr const char* METHODS[] = {"GET", "POST", "PUT", "DELETE"};
    return replyOf(m_interface.handleObject(METHODS[request.mode], request.path, bodyOf(request)));
}

Reply SimulatedArray::change(const std::string& method, const std::string& target, const Json::Value& body)
{
    return replyOf(m_interface.handleObject(method, target, body.isNull() ? "" : arraysim::jsonText(body)));
}

Json::Value SimulatedArray::all(const std::string& resource)
{
    Json::Value records(Json::arrayValue);
    for (const Json::Value& record : change("GET", "/" + resource, Json::Value()).records) {
        records.append(record);
    }
    return records;
}

const Unit* SimulatedArray::at(unsigned number) const
{
    const auto found = m_shown.find(number);
    return found == m_shown.end() ? nullptr : &found->second;
}

bool SimulatedArray::shows(const std::string& lun) const
{
    return std::any_of(m_shown.begin(), m_shown.end(), [&](const auto& one) { return one.second.id == lun; });
}

/** The lowest number that is free, so that numbers come back with other LUNs behind them. */
void SimulatedArray::exposureChanged(const arraysim::ObjectKey& object,
                                     const arraysim::ObjectKey& /*initiator*/, bool appeared)
{
    ++m_changes;
    if (appeared) {
        unsigned number = FIRST_NUMBER;
        while (at(number) != nullptr) {
            ++number;
        }
        m_shown[number] = m_units.at(object.second);
        return;
    }
    for (auto one = m_shown.begin(); one != m_shown.end();) {
        one = one->second.id == object.second ? m_shown.erase(one) : std::next(one);
    }
}

} // namespace simulation

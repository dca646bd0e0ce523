#include "types/Common.h"
#include "types/Types.h"

#include <cstdio>

namespace arraysim {
namespace {

constexpr const char* TARGET = "3";

std::vector<Field> portFields()
{
    return {
        Field("NAME", Wire::TEXT).filter(),
        Field("LOCATION", Wire::TEXT),
        healthField(),
        runningField(RUNNING_LINK_UP),
        Field("LOGICTYPE", Wire::DECIMAL).fallback("0").filter(),
        Field("INIORTGT", Wire::DECIMAL).fallback(TARGET),
        Field("STARTTIME", Wire::DECIMAL).fallback("1700000000"),
    };
}

void addFields(std::vector<Field>& fields, Wire wire, const std::vector<const char*>& keys)
{
    for (const char* key : keys) {
        fields.emplace_back(key, wire);
        fields.back().fallback(wire == Wire::DECIMAL ? "0" : "");
    }
}

Object port(unsigned index, const std::string& prefix, Values values)
{
    const std::string controller = index % 2 == 0 ? "A" : "B";
    const std::string id = std::to_string(index + 1);
    values["NAME"] = prefix + id;
    values["LOCATION"] = "CTE0." + controller + ".P" + std::to_string(index / 2);
    return {id, std::move(values), 0};
}

/** The prefix and a byte as two hexadecimal digits. */
std::string numbered(const char* prefix, unsigned byte)
{
    char digits[8];
    std::snprintf(digits, sizeof digits, "%02x", byte & 0xffU);
    return std::string(prefix) + digits;
}

std::vector<Object> factoryFcPorts()
{
    std::vector<Object> ports;
    for (unsigned i = 0; i < 4; ++i) {
        const bool up = i != 3;
        ports.push_back(port(i, "FC",
                             {{"WWN", numbered("2100001405a000", i)},
                              {"RUNNINGSTATUS", up ? RUNNING_LINK_UP : RUNNING_LINK_DOWN},
                              {"RUNSPEED", up ? "16000" : "--"}}));
        ports.back().values.insert({{"CONFSPEED", "0"},
                                    {"MAXSUPPORTSPEED", "16000"},
                                    {"FCRUNMODE", "1"},
                                    {"LOSTSIGNALS", std::to_string(i)},
                                    {"LOSTSYNC", std::to_string(2 * i)},
                                    {"LINKFAIL", up ? "0" : "1"}});
    }
    return ports;
}

std::vector<Object> factoryFcoePorts()
{
    std::vector<Object> ports;
    for (unsigned i = 0; i < 2; ++i) {
        ports.push_back(port(i, "FCoE",
                             {{"WWN", numbered("2200001405b000", i)},
                              {"RUNSPEED", "10000"},
                              {"VLANID", std::to_string(100 + i)},
                              {"LOSTPACKETS", std::to_string(3 * i)}}));
    }
    return ports;
}

std::vector<Object> factoryEthPorts()
{
    std::vector<Object> ports;
    for (unsigned i = 0; i < 4; ++i) {
        const bool management = i == 3;
        ports.push_back(port(i, "ETH",
                             {{"MACADDRESS", numbered("02:00:14:05:00:", i)},
                              {"LOGICTYPE", management ? "1" : "0"},
                              {"MTU", "1500"},
                              {"SPEED", "10000"},
                              {"IPV4ADDRESS", "192.0.2." + std::to_string(10 + i)},
                              {"IPV4MASK", "255.255.255.0"},
                              {"IPV6ADDRESS", "2001:db8::" + std::to_string(10 + i)},
                              {"IPV6MASK", "64"}}));
        if (!management) {
            ports.back().values.insert(
                {{"ISCSITCPPORT", "3260"},
                 {"ISCSINAME", "iqn.2003-01.com.example.arraysim:port" + std::to_string(i + 1)}});
        }
    }
    return ports;
}

ObjectType portType(Type code, const char* title, const char* resource, std::vector<Object> (*factory)())
{
    ObjectType ports{code, title, {resource}, portFields()};
    ports.callerManaged = false;
    ports.factory = factory;
    return ports;
}

} // namespace

const ObjectType& fcPortType()
{
    static const ObjectType type = [] {
        ObjectType ports = portType(Type::FC_PORT, "FC port", "FC_PORT", factoryFcPorts);
        addFields(ports.fields, Wire::TEXT, {"WWN", "RUNSPEED"});
        addFields(ports.fields, Wire::DECIMAL,
                  {"CONFSPEED", "FCRUNMODE", "LOSTSIGNALS", "BADCHARNUMBER", "LOSTSYNC", "LINKFAIL",
                   "FLOGINDELAYTIMES", "MAXSUPPORTSPEED"});
        return ports;
    }();
    return type;
}

const ObjectType& fcoePortType()
{
    static const ObjectType type = [] {
        ObjectType ports = portType(Type::FCOE_PORT, "FCoE port", "FCoE_PORT", factoryFcoePorts);
        addFields(ports.fields, Wire::TEXT, {"WWN", "RUNSPEED", "VLANID"});
        addFields(ports.fields, Wire::DECIMAL, {"ERRORPACKETS", "LOSTPACKETS", "OVERFLOWEDPACKETS"});
        return ports;
    }();
    return type;
}

const ObjectType& ethPortType()
{
    static const ObjectType type = [] {
        ObjectType ports = portType(Type::ETH_PORT, "Ethernet port", "ETH_PORT", factoryEthPorts);
        addFields(ports.fields, Wire::TEXT,
                  {"MACADDRESS", "ISCSITCPPORT", "ISCSINAME", "IPV4ADDRESS", "IPV4MASK", "IPV6ADDRESS",
                   "IPV6MASK"});
        addFields(ports.fields, Wire::DECIMAL,
                  {"MTU", "SPEED", "ERRORPACKETS", "LOSTPACKETS", "OVERFLOWEDPACKETS"});
        return ports;
    }();
    return type;
}

} // namespace arraysim
